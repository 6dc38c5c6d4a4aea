#include "real_library.h"

#include <dlfcn.h>
#include <sys/stat.h>

#include <algorithm>
#include <cstdlib>
#include <vector>

#include "setting.h"

namespace orlu::probe {
namespace {

constexpr char kLibraryName[] = "liborlu.vac.interface.so";
// On a phone, the loader searches only one folder, so the probe is installed there as kLibraryName, and the
// real library is renamed to kRealName.
constexpr char kRealName[] = "liborlu.vac.interface.real.so";
constexpr char kEntryName[] = "AlgoInterfaceEntry";

std::string folderOf(const std::string& file) {
  const size_t slash = file.rfind('/');
  return slash == std::string::npos ? "." : file.substr(0, slash);
}

bool areSameFile(const std::string& left, const std::string& right) {
  struct stat first;
  struct stat second;
  return stat(left.c_str(), &first) == 0 && stat(right.c_str(), &second) == 0 &&
         first.st_dev == second.st_dev && first.st_ino == second.st_ino;
}

// Splits a list of folders at ':' and ';', as the loader does. An empty entry means the current folder.
std::vector<std::string> foldersOf(const char* list) {
  std::vector<std::string> folders;
  if (list == nullptr || *list == '\0') return folders;
  const std::string text = list;
  for (size_t begin = 0; begin <= text.size();) {
    const size_t end = std::min(text.find_first_of(":;", begin), text.size());
    folders.push_back(end == begin ? "." : text.substr(begin, end - begin));
    begin = end + 1;
  }
  return folders;
}

std::string probeFile() {
  return fileOf(reinterpret_cast<const void*>(&probeFile));
}

// Finds the library that the probe replaces. dlopen(kLibraryName) can't find it: it returns the probe, which
// is already loaded under this name.
std::string nextLibrary(const void* caller) {
  const std::string own = probeFile();
  std::string beside = folderOf(own) + "/" + kRealName;
  struct stat real;
  if (stat(beside.c_str(), &real) == 0) return beside;
  std::vector<std::string> folders = foldersOf(std::getenv("LD_LIBRARY_PATH"));
  folders.push_back(folderOf(fileOf(caller)));
  folders.push_back(folderOf(own) + "/../lib");
  folders.insert(folders.end(), {"/vendor/lib", "/system/lib"});
  for (const std::string& folder : folders) {
    std::string file = folder + "/" + kLibraryName;
    struct stat status;
    if (stat(file.c_str(), &status) == 0 && !areSameFile(file, own)) return file;
  }
  return {};
}

std::string loaderError() {
  const char* const error = dlerror();
  return error == nullptr ? "" : error;
}

}  // namespace

std::string fileOf(const void* address) {
  Dl_info info;
  if (dladdr(address, &info) == 0 || info.dli_fname == nullptr) return {};
  return info.dli_fname;
}

std::string findRealLibrary(const void* caller) {
  const std::string named = setting("ORLU_ALGO_LIBRARY");
  return named.empty() ? nextLibrary(caller) : named;
}

RealLibrary openRealLibrary(const std::string& path) {
  RealLibrary library;
  library.stage = "open";
  if (path.empty()) {
    library.error = std::string("no other ") + kLibraryName + " on the loader's path";
    return library;
  }
  if (areSameFile(path, probeFile())) {
    library.error = path + ": this is the probe itself";
    return library;
  }
  void* const handle = dlopen(path.c_str(), RTLD_NOW);
  if (handle == nullptr) {
    library.error = loaderError();
    return library;
  }
  library.stage = "entry";
  library.entry = reinterpret_cast<RealLibrary::Entry>(dlsym(handle, kEntryName));
  if (library.entry == nullptr) {
    library.error = loaderError();
  } else {
    library.stage = "";
  }
  return library;
}

}  // namespace orlu::probe
