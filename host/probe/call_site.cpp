#include "call_site.h"

#include <link.h>
#include <unistd.h>
#include <unwind.h>

#include <climits>

namespace orlu::probe {
namespace {

std::string programPath() {
  char path[PATH_MAX];
  const ssize_t length = readlink("/proc/self/exe", path, sizeof path);
  return length < 0 ? "" : std::string(path, static_cast<size_t>(length));
}

Module moduleOf(const dl_phdr_info& info) {
  Module module;
  // dl_iterate_phdr() leaves the program itself unnamed.
  module.path = info.dlpi_name == nullptr || *info.dlpi_name == '\0' ? programPath() : info.dlpi_name;
  module.name = module.path.substr(module.path.rfind('/') + 1);
  module.loadedAt = info.dlpi_addr;
  module.begin = UINTPTR_MAX;
  for (int i = 0; i < info.dlpi_phnum; ++i) {
    const auto& header = info.dlpi_phdr[i];
    if (header.p_type != PT_LOAD) continue;
    const uintptr_t begin = info.dlpi_addr + header.p_vaddr;
    if (begin < module.begin) module.begin = begin;
    if (begin + header.p_memsz > module.end) module.end = begin + header.p_memsz;
  }
  return module;
}

struct Walk {
  ModuleTable& modules;
  const Module* own;
  CallSite site;
};

_Unwind_Reason_Code visitFrame(_Unwind_Context* context, void* argument) {
  Walk& walk = *static_cast<Walk*>(argument);
  const uintptr_t returnAddress = _Unwind_GetIP(context);
  if (returnAddress == 0) return _URC_END_OF_STACK;
  const uintptr_t address = returnAddress - 1;
  const bool within =
      walk.site.module != nullptr && address >= walk.site.module->begin && address < walk.site.module->end;
  if (!within) {
    if (walk.site.module != nullptr) return _URC_END_OF_STACK;
    const Module* const module = walk.modules.find(address);
    if (module == nullptr) return _URC_END_OF_STACK;
    if (module == walk.own) return _URC_NO_REASON;
    walk.site.module = module;
  }
  walk.site.addresses[walk.site.count++] = address;
  return walk.site.count < CallSite::kMostFrames ? _URC_NO_REASON : _URC_END_OF_STACK;
}

}  // namespace

const Module* ModuleTable::find(uintptr_t address) {
  {
    const std::shared_lock<std::shared_mutex> lock(mMutex);
    if (const Module* const module = findKnown(address)) return module;
  }
  readAll();
  const std::shared_lock<std::shared_mutex> lock(mMutex);
  return findKnown(address);
}

const Module* ModuleTable::findKnown(uintptr_t address) const {
  for (const auto& module : mModules) {
    if (address >= module->begin && address < module->end) return module.get();
  }
  return nullptr;
}

void ModuleTable::readAll() {
  std::vector<std::unique_ptr<Module>> found;
  dl_iterate_phdr(
      [](dl_phdr_info* info, size_t, void* list) {
        static_cast<decltype(found)*>(list)->push_back(std::make_unique<Module>(moduleOf(*info)));
        return 0;
      },
      &found);
  const std::unique_lock<std::shared_mutex> lock(mMutex);
  for (auto& module : found) {
    if (findKnown(module->begin) == nullptr) mModules.push_back(std::move(module));
  }
}

CallSite callSite(ModuleTable& modules) {
  static const Module* const own = modules.find(reinterpret_cast<uintptr_t>(&callSite));
  Walk walk = {modules, own, {}};
  _Unwind_Backtrace(visitFrame, &walk);
  return walk.site;
}

}  // namespace orlu::probe
