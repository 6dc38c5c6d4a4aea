// Tables of the Java classes and members that an object keeps: one row each, resolved in order.
#pragma once

#include <jni.h>

#include <cstddef>

#include "jni_support.h"

namespace orlu {

// One class, or one member of the class row before it, and where `Owner` keeps it.
template <typename Owner>
struct JniMember {
  enum class Kind { kClass, kMethod, kStaticMethod, kField };
  enum Flag : unsigned {
    kNone = 0,
    kStop = 1,         // nothing behind this row is resolved when it is missing
    kAnyClass = 2,     // looked up even when the row's class is missing
    kBareTag = 4,      // reported under the short tag, without file and line
    kComposition = 8,  // belongs to the composition class
  };

  Kind kind;
  const char* name;
  const char* signature;
  jclass Owner::*clazz;      // a class row: its slot
  jmethodID Owner::*method;  // a method row: its slot
  jfieldID Owner::*field;    // a field row: its slot
  const char* label;         // what a report calls the row
  unsigned flags;
  jclass Owner::*examined;  // the slot that tells whether a class row was found

  bool has(Flag flag) const { return (flags & flag) != 0; }

  // The same row with other flags, another label or another slot to look at.
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

// Makers of rows; `label` is the slot's name.
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

// Walks the rows of a table once and fills the owner's slots in. A lookup on a class that was not found
// answers null without reaching the VM, and an exception that a lookup leaves is cleared.
template <typename Owner>
class JniMemberWalk {
public:
  using Row = JniMember<Owner>;

  template <size_t N>
  JniMemberWalk(JNIEnv* env, Owner& owner, const Row (&rows)[N], unsigned skippedFlags = 0)
      : mEnv(env), mOwner(owner), mNext(rows), mEnd(rows + N), mSkippedFlags(skippedFlags) {}

  // Resolves rows until one is missing; answers that row, or null when the table is done.
  const Row* nextMissing() {
    while (mNext != mEnd) {
      const Row& row = *mNext++;
      if ((row.flags & mSkippedFlags) == 0 && !resolve(row)) return &row;
    }
    return nullptr;
  }

private:
  bool resolve(const Row& row) {
    if (row.kind == Row::Kind::kClass) {
      mClass = mOwner.*row.clazz = checked(mEnv->FindClass(row.name));
      mClassFound = mOwner.*row.examined != nullptr;
      return mClassFound;
    }
    if (!mClassFound && !row.has(Row::kAnyClass)) return true;  // reported with its class
    return row.kind == Row::Kind::kField ? resolveField(row) : resolveMethod(row);
  }
  bool resolveMethod(const Row& row) {
    jmethodID id = nullptr;
    if (mClass != nullptr) {
      id = checked(row.kind == Row::Kind::kStaticMethod
                       ? mEnv->GetStaticMethodID(mClass, row.name, row.signature)
                       : mEnv->GetMethodID(mClass, row.name, row.signature));
    }
    mOwner.*row.method = id;
    return id != nullptr;
  }
  bool resolveField(const Row& row) {
    jfieldID id = mClass == nullptr ? nullptr : checked(mEnv->GetFieldID(mClass, row.name, row.signature));
    mOwner.*row.field = id;
    return id != nullptr;
  }
  // What was found left no exception: only a lookup that failed does.
  template <typename T>
  T checked(T found) {
    if (found == nullptr) clearException(mEnv);
    return found;
  }

  JNIEnv* mEnv;
  Owner& mOwner;
  const Row* mNext;
  const Row* mEnd;
  unsigned mSkippedFlags;  // rows with one of these are left alone
  jclass mClass = nullptr;
  bool mClassFound = false;
};

}  // namespace orlu
