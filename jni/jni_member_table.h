// Tables of the Java classes and members that an object caches. Each row is one class or member. Rows are
// resolved in order, and missing ones are logged in the same order.
#pragma once

#include <jni.h>

#include <cstddef>

#include "jni_support.h"
#include "log.h"

namespace orlu {

// A class, or a member of the preceding class row, and the slot of `Owner` that stores it.
template <typename Owner>
struct JniMember {
  enum class Kind { kClass, kMethod, kStaticMethod, kField };
  enum Flag : unsigned {
    kStop = 1,      // if this row is missing, stop: later rows stay null
    kAnyClass = 2,  // look the member up even if its class row failed
    kBareTag = 4,   // log under the short tag, without file:line
  };

  Kind kind;
  const char* name;
  const char* signature;
  jclass Owner::*clazz;      // in a class row: the slot for the class
  jmethodID Owner::*method;  // in a method row: the slot for the method
  jfieldID Owner::*field;    // in a field row: the slot for the field
  const char* label;         // NAME of the log line "NAME is null", if the row is missing
  unsigned flags;
  jclass Owner::*examined;  // in a class row: the class counts as found if this slot is not null

  bool has(Flag flag) const { return (flags & flag) != 0; }

  // Return the row with other flags, another label or another slot to examine.
  constexpr JniMember with(unsigned newFlags) const {
    JniMember row = *this;
    row.flags = newFlags;
    return row;
  }
  constexpr JniMember reportedAs(const char* newLabel) const {
    JniMember row = *this;
    row.label = newLabel;
    return row;
  }
  constexpr JniMember examining(jclass Owner::*slot) const {
    JniMember row = *this;
    row.examined = slot;
    return row;
  }
};

// Create rows; `label` is the slot's name.
template <typename Owner>
constexpr JniMember<Owner> jniClass(const char* name, jclass Owner::*slot, const char* label) {
  return {JniMember<Owner>::Kind::kClass, name, nullptr, slot, nullptr, nullptr, label, 0, slot};
}
template <typename Owner>
constexpr JniMember<Owner> jniMethod(const char* name, const char* signature, jmethodID Owner::*slot,
                                     const char* label) {
  return {JniMember<Owner>::Kind::kMethod, name, signature, nullptr, slot, nullptr, label, 0, nullptr};
}
template <typename Owner>
constexpr JniMember<Owner> jniStaticMethod(const char* name, const char* signature, jmethodID Owner::*slot,
                                           const char* label) {
  return {JniMember<Owner>::Kind::kStaticMethod, name, signature, nullptr, slot, nullptr, label, 0, nullptr};
}
template <typename Owner>
constexpr JniMember<Owner> jniField(const char* name, const char* signature, jfieldID Owner::*slot,
                                    const char* label) {
  return {JniMember<Owner>::Kind::kField, name, signature, nullptr, nullptr, slot, label, 0, nullptr};
}

// Resolves the rows of tables in order, stores the results in the owner's slots, and logs each missing row.
// Skips the members of a missing class, except rows with kAnyClass. A lookup in a null class gives null
// without calling the VM. Exceptions of lookups are cleared.
template <typename Owner>
class JniMemberWalk {
public:
  using Row = JniMember<Owner>;

  // `place` is the source location to log; `shortTag` is the tag of lines without file:line.
  JniMemberWalk(JNIEnv* env, Owner& owner, const LogPlace& place, const char* shortTag)
      : mEnv(env), mOwner(owner), mPlace(place), mShortTag(shortTag) {}

  // Stops at a missing row with kStop; later calls then do nothing.
  template <size_t N>
  void resolve(const Row (&rows)[N]) {
    for (const Row& row : rows) {
      if (mStopped) return;
      if (!resolve(row)) report(row);
    }
  }

  // Returns 0 if every row was found, else -1.
  int result() const { return mResult; }

private:
  bool resolve(const Row& row) {
    if (row.kind == Row::Kind::kClass) {
      mClass = mOwner.*row.clazz = clearIfNull(mEnv, mEnv->FindClass(row.name));
      mClassFound = mOwner.*row.examined != nullptr;
      return mClassFound;
    }
    if (!mClassFound && !row.has(Row::kAnyClass)) return true;  // the missing class was logged
    return row.kind == Row::Kind::kField ? resolveField(row) : resolveMethod(row);
  }
  bool resolveMethod(const Row& row) {
    jmethodID id = nullptr;
    if (mClass != nullptr) {
      id = clearIfNull(mEnv, row.kind == Row::Kind::kStaticMethod
                                 ? mEnv->GetStaticMethodID(mClass, row.name, row.signature)
                                 : mEnv->GetMethodID(mClass, row.name, row.signature));
    }
    mOwner.*row.method = id;
    return id != nullptr;
  }
  bool resolveField(const Row& row) {
    jfieldID id = nullptr;
    if (mClass != nullptr) id = clearIfNull(mEnv, mEnv->GetFieldID(mClass, row.name, row.signature));
    mOwner.*row.field = id;
    return id != nullptr;
  }
  void report(const Row& row) {
    mResult = -1;
    mStopped = row.has(Row::kStop);
    if (row.has(Row::kBareTag)) {
      LOGE_BARE(mShortTag, "%s is null", row.label);
    } else {
      LOGE_AT(mPlace, "%s is null", row.label);
    }
  }

  JNIEnv* mEnv;
  Owner& mOwner;
  LogPlace mPlace;
  const char* mShortTag;
  int mResult = 0;
  bool mStopped = false;
  jclass mClass = nullptr;
  bool mClassFound = false;
};

}  // namespace orlu
