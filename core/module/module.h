// Module: the whole module put together over a platform's ports. A host makes one, gives its api() to the
// engine, and keeps it until after CEShutdown.
#pragma once

#include <memory>

#include "core/module/quillfile.h"
#include "core/platform/platform.h"
#include "core/saving/quillfile_routines.h"
#include "core/tracking/item_lists.h"
#include "core/tracking/responses.h"

namespace quillfile {

class Module {
 public:
  // The ports must outlive the module.
  explicit Module(const Platform& platform);
  ~Module();
  Module(const Module&) = delete;
  Module& operator=(const Module&) = delete;

  CQuillfile& api();
  ItemLists& lists();                 // what the user saved by hand, for whoever wants to know
  QuillfileRoutines& saving();        // its procedures one by one
  Responses& responses();             // the operations on Drafts that are offered to other components
  const RunCounter& counter() const;  // of the run that is under way, or of the last one

 private:
  struct Rooms;
  std::unique_ptr<Rooms> rooms_;
};

}  // namespace quillfile
