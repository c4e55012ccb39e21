// ModuleState: what CQuillfile remembers from one call of the engine to the next. Rooms get it read-only.
#pragma once

#include "core/platform/engine.h"

namespace quillfile {

struct ModuleState {
  Ref<ModuleHost> engine;  // held from the first CEStartup to CEShutdown
  Ref<Application> outlookApp;
  Ref<ModuleCollection> moduleCollection;
  Text deletedFolderEntryId,
      deletedFolderStoreId;  // these and the next are known once an explorer has opened
  Text sentFolderEntryId, sentFolderStoreId;
  Text outboxEntryId;
  Text draftsEntryId;
};

}  // namespace quillfile
