// Until destroyed, replaces an environment's JNI functions, to count calls and make lookups or calls fail.
// Ignores the calls of the VM's own native methods: the VM frees the local references that such a
// method creates when the method returns.
#pragma once

#include <jni.h>

#include <map>
#include <set>
#include <string>
#include <vector>

#include "scoped_jni_functions.h"

namespace orlu::test {

class JniTable {
public:
  explicit JniTable(JNIEnv* env);
  JniTable(const JniTable&) = delete;
  JniTable& operator=(const JniTable&) = delete;
  ~JniTable();

  // Makes lookups fail from now on, with the VM's exception pending. `name` is a class, "class.member" for
  // all methods and fields of that name, or "class.member signature" for one of them.
  void hide(const std::string& name);

  // Makes a function listed in jni_functions.h return null or 0 from now on, with an OutOfMemoryError
  // pending.
  void fail(const std::string& function);

  int calls(const std::string& function) const;
  // Returns all lookups in order: a class as its name, a member as "class.member signature", or as
  // "null.member signature" if its class is missing.
  const std::vector<std::string>& lookups() const { return mLookups; }
  // Returns the number of local references created and not deleted.
  int localReferences() const { return mLocalReferences; }
  // Returns the number of arrays whose elements were acquired but not released.
  int heldArrays() const;

private:
  friend struct JniTableFunctions;

  jclass findClass(const char* name);
  template <typename Id>
  Id findMember(Id (*original)(JNIEnv*, jclass, const char*, const char*), jclass clazz, const char* name,
                const char* signature);
  void noteObject(const std::string& function, jobject object);
  std::string nameOf(jclass clazz);

  ScopedJniFunctions mFunctions;
  std::set<std::string> mHidden;
  std::set<std::string> mFailing;
  std::map<std::string, int> mCalls;
  std::vector<std::string> mLookups;
  int mLocalReferences = 0;
  std::vector<int> mFrames;  // mLocalReferences at each PushLocalFrame
  bool mInsideVm = false;
};

}  // namespace orlu::test
