#include "algo_guarded_table.h"

#include <atomic>
#include <thread>

#include "algo_native_provider.h"
#include "jni_support.h"
#include "log.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-AlgoNativeContext";

}  // namespace

AlgoGuardedTable::AlgoGuardedTable(JavaVM* javaVm) : mJavaVm(javaVm) {
  if (!AlgoNativeProvider::getInstance()->initAlgoInterface(&mOperations)) {
    LOGE_AS("AlgoNativeContext", "init algo interface failed");
  }
  clearLeftException(environment(), "AlgoInterfaceEntry");
}

JNIEnv* AlgoGuardedTable::environment() const {
  JNIEnv* env = nullptr;
  if (mJavaVm == nullptr) return nullptr;
  return mJavaVm->GetEnv(reinterpret_cast<void**>(&env), JNI_VERSION_1_4) == JNI_OK ? env : nullptr;
}

void* AlgoGuardedTable::createBlock(AlgoMetadataKind kind) const {
  const auto& create = mOperations.metadataOps.createMetadata;
  if (!create) {
    LOGE_AS("createMetadata", "createMetadata failed");
    return nullptr;
  }
  return call<void*>(environment(), "createMetadata", create, nullptr, kind);
}

void AlgoGuardedTable::destroyBlock(void* block) const {
  if (block == nullptr) return;
  const auto& destroy = mOperations.metadataOps.destroyMetadata;
  if (!destroy) {
    LOGE_AS("destroyMetadata", "destroyMetadata failed");
    return;
  }
  try {
    destroy(block);
  } catch (...) {
    logThrew("destroyMetadata");
  }
  clearLeftException(environment(), "destroyMetadata");
}

unsigned AlgoGuardedTable::sizeOf(void* block) const {
  const auto& getSize = mOperations.metadataOps.getSize;
  return block == nullptr || !getSize ? 0 : call(environment(), "getSize", getSize, 0U, block);
}

AlgoMetadataEntry AlgoGuardedTable::entryOf(void* parameterBlock) const {
  AlgoMetadataEntry entry;
  entry.block = parameterBlock;
  entry.size = sizeOf(parameterBlock);
  return entry;
}

int AlgoGuardedTable::setValue(JNIEnv* env, void* block, const char* section, const char* key, void* data,
                               unsigned size) const {
  const auto& operation = mOperations.metadataOps.setValue;
  if (block == nullptr || !operation) return -1;
  return call(env, "setValue", operation, -1, block, section, key, data, size);
}

int AlgoGuardedTable::getValue(JNIEnv* env, void* block, const char* section, const char* key, void* data,
                               unsigned size) const {
  const auto& operation = mOperations.metadataOps.getValue;
  if (block == nullptr || !operation) return -1;
  return call(env, "getValue", operation, -1, block, section, key, data, size);
}

void AlgoGuardedTable::logThrew(const char* operation) {
  LOGE_AS(operation, "%s threw", operation);
}

// With a pending exception, all later tag reads would find nothing.
void AlgoGuardedTable::clearLeftException(JNIEnv* env, const char* operation) {
  if (env != nullptr && clearException(env)) LOGE_AS(operation, "%s left a Java exception", operation);
}

struct LentVisitor::Loan {
  explicit Loan(const AlgoMetadataVisitor& lent) : visitor(lent) {}

  int visit(const char* section, const char* key, void* data, unsigned size) const {
    // isOver alone is not enough: on another thread, the loan may end while the visitor runs.
    if (std::this_thread::get_id() != thread || isOver) {
      LOGE_AS("visitor", "visitor called on another thread, or too late");
      return -1;
    }
    try {
      return visitor(section, key, data, size);
    } catch (...) {
      LOGE_AS("visitor", "visitor threw");
      return -1;
    }
  }

  const AlgoMetadataVisitor& visitor;
  const std::thread::id thread = std::this_thread::get_id();
  std::atomic<bool> isOver{false};  // atomic: a later thread with the same id may read it
};

LentVisitor::LentVisitor(const AlgoMetadataVisitor& visitor) : mLoan(std::make_shared<Loan>(visitor)) {}

LentVisitor::~LentVisitor() {
  mLoan->isOver = true;
}

AlgoMetadataVisitor LentVisitor::get() const {
  if (!mLoan->visitor) return nullptr;
  return [loan = mLoan](const char* section, const char* key, void* data, unsigned size) {
    return loan->visit(section, key, data, size);
  };
}

}  // namespace orlu
