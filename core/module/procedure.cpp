#include "core/module/procedure.h"

#include <exception>
#include <new>

#include "core/module/trace.h"

namespace quillfile {

void reportError(EngineServices& services, TextView name, TextView message, std::int32_t level) {
  ignoringErrors([&] { services.reportError(message, level, fill(u"{}{}", moduleName, name)); });
}

void reportError(EngineServices& services, const Procedure& about, const Step& step, const Failure& failure) {
  const auto& [text, hasStep] = about.wording;
  reportError(services, about.name,
              hasStep ? fill(text, step.number(), failure.description) : fill(text, failure.description),
              about.level);
}

Failure currentFailure() {
  try {
    throw;
  } catch (const Failure& failure) {
    return failure;
  } catch (const std::bad_alloc&) {
    return {7, u"Out of memory"};
  } catch (const std::exception& error) {
    return {5, fromUtf8(error.what())};
  }
}

}  // namespace quillfile
