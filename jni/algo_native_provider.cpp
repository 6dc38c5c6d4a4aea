#include "algo_native_provider.h"

#include <dlfcn.h>

#include "log.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-AlgoNativeProvider";
constexpr char kLibraryName[] = "liborlu.vac.interface.so";
constexpr char kEntryName[] = "AlgoInterfaceEntry";

}  // namespace

AlgoNativeProvider* AlgoNativeProvider::getInstance() {
  static AlgoNativeProvider* const instance = new AlgoNativeProvider();
  return instance;
}

AlgoNativeProvider::AlgoNativeProvider() {
  initAlgoInterface(&mCallbacks);
}

bool AlgoNativeProvider::initAlgoInterface(AlgoInterfaceCallbacks* table) {
  if (table == nullptr) {
    LOGE("init algo interface failed, input is null");
    return false;
  }
  *table = AlgoInterfaceCallbacks();
  const std::lock_guard<std::mutex> lock(mMutex);
  mEntry = nullptr;

  if (mLibrary == nullptr) mLibrary = dlopen(kLibraryName, RTLD_NOW);
  if (mLibrary == nullptr) {
    LOGE("dlopen error: %s", dlerror());
    return false;
  }
  mEntry = reinterpret_cast<Entry>(dlsym(mLibrary, kEntryName));
  if (mEntry == nullptr) {
    LOGE("dlsym failed: %s", dlerror());
    return false;
  }
  mEntry(table);
  return true;
}

}  // namespace orlu
