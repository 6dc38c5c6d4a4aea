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
  static AlgoNativeProvider* const instance = new AlgoNativeProvider(kUnopened);
  // Opens the library only after `instance` is initialised, because other callers wait until then. Otherwise,
  // they would also wait for the library's entry, and an entry that creates a client would block forever.
  if (!instance->mIsOpened.exchange(true)) instance->initAlgoInterface(&instance->mCallbacks);
  return instance;
}

AlgoNativeProvider::AlgoNativeProvider() : AlgoNativeProvider(kUnopened) {
  initAlgoInterface(&mCallbacks);
}

bool AlgoNativeProvider::initAlgoInterface(AlgoInterfaceCallbacks* table) {
  if (table == nullptr) {
    LOGE("init algo interface failed, input is null");
    return false;
  }
  *table = AlgoInterfaceCallbacks();
  const Entry entry = findEntry();
  if (entry == nullptr) return false;
  try {
    entry(table);
  } catch (...) {
    LOGE("%s threw", kEntryName);
    *table = AlgoInterfaceCallbacks();
    return false;
  }
  return true;
}

AlgoNativeProvider::Entry AlgoNativeProvider::findEntry() {
  const std::lock_guard<std::mutex> lock(mMutex);
  mEntry = nullptr;
  if (mLibrary == nullptr) mLibrary = dlopen(kLibraryName, RTLD_NOW);
  if (mLibrary == nullptr) {
    LOGE_AS("initAlgoInterface", "dlopen error: %s", dlerror());
    return nullptr;
  }
  mEntry = reinterpret_cast<Entry>(dlsym(mLibrary, kEntryName));
  if (mEntry == nullptr) LOGE_AS("initAlgoInterface", "dlsym failed: %s", dlerror());
  return mEntry;
}

}  // namespace orlu
