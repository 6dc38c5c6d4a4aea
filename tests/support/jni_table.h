// Replaces an environment's JNI functions while this object lives, to count calls and to make lookups and
// calls fail. Calls made inside native methods of the Java library are passed through uncounted: their
// references are freed when they return.
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

  // Makes lookups fail from now on, with the VM's exception pending. Names a class, or "class.member" for
  // methods and fields, static or not.
  void hide(const std::string& name);

  // Makes this function return null or 0 from now on, with an OutOfMemoryError pending. It must be one of the
  // counted functions.
  void fail(const std::string& function);

  // Number of calls of a function.
  int calls(const std::string& function) const;
  // All lookups in order: a class as its name, a member as "class.member signature" or "null.member
  // signature".
  const std::vector<std::string>& lookups() const { return mLookups; }
  // Local references that this library made minus those it deleted.
  int localReferences() const { return mLocalReferences; }
  // Arrays whose elements were acquired but not released.
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
  std::vector<int> mFrames;  // mLocalReferences at each push
  bool mInsideVm = false;
};

}  // namespace orlu::test
