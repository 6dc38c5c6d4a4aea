#include "camera_metadata_parser.h"

#include "jni_member_table.h"
#include "log.h"

namespace orlu {
namespace {

// Number of local references to reserve. The parser caches its classes in local references until the native
// method returns, and needs further references for the objects that it reads.
constexpr jint kLocalReferences = 96;

}  // namespace

// The classes and members that initFromEnv() caches, one per row.
struct CameraMetadataParser::Table {
  using P = CameraMetadataParser;
  using Row = JniMember<P>;

// clang-format off
#define TABLE(name) static constexpr Row name[] = {
#define END_TABLE };
// clang-format on
// NOLINTBEGIN(bugprone-macro-parentheses): `change` is a call of a member function, or nothing.
#define CLASS_WITH(name, slot, change) jniClass<P>(name, &P::slot, #slot) change,
#define METHOD_WITH(name, signature, slot, change) jniMethod<P>(name, signature, &P::slot, #slot) change,
// NOLINTEND(bugprone-macro-parentheses)
#define CLASS(name, slot) CLASS_WITH(name, slot, )
#define METHOD(name, signature, slot) METHOD_WITH(name, signature, slot, )
#define STATIC_METHOD(name, signature, slot) jniStaticMethod<P>(name, signature, &P::slot, #slot),
#define FIELD(name, signature, slot) jniField<P>(name, signature, &P::slot, #slot),
#include "camera_metadata_parser_members.inc"
};

int CameraMetadataParser::initFromEnv(JNIEnv* env, bool withoutComposition) {
  *this = CameraMetadataParser();
  mEnv = env;
  if (mEnv == nullptr) {
    LOGE("mEnv is null");
    return -1;
  }
  reserveLocalReferences(mEnv, kLocalReferences);
  JniMemberWalk<CameraMetadataParser> walk(mEnv, *this, LOG_PLACE, kShortLogTag);
  walk.resolve(Table::kRows);
  if (!withoutComposition) walk.resolve(Table::kCompositionRows);
  walk.resolve(Table::kHashMapRows);
  return walk.result();
}

}  // namespace orlu
