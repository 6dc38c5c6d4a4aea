// A thin table of our own over an environment's JNI functions, in place for the life of this object: it
// counts calls and lets lookups and calls fail. What native methods of the Java library do on the way is
// passed through, uncounted: their references end with them.
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

  // From now on these are not found, and the VM's exception is left behind: a class by its name, a member as
  // "class.member", a static one and a field too.
  void hide(const std::string& name);

  // From now on this function answers null or 0 and leaves an OutOfMemoryError. It must be one of those that
  // are counted.
  void fail(const std::string& function);

  // Calls by the function's name.
  int calls(const std::string& function) const;
  // Every lookup in order: a class as its name, a member as "class.member signature", or "null.member
  // signature".
  const std::vector<std::string>& lookups() const { return mLookups; }
  // Local references made less those deleted, as far as this library makes them.
  int localReferences() const { return mLocalReferences; }
  // Arrays whose elements were fetched and not released.
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
  std::vector<int> mFrames;  // mLocalReferences when each was pushed
  bool mInsideVm = false;
};

}  // namespace orlu::test
