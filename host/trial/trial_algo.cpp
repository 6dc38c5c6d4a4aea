// An algorithm library for trials: process() calls back before it returns. The request's values and algorithm
// list form one byte record for Java. Supports one request at a time, on one thread.

#include <jni.h>

#include <string_view>
#include <vector>

#include "algo_interface.h"
#include "answering_table.h"

namespace orlu::trial {
namespace {

int gToken = 0;  // its address is the handle of every client and block

// The record: the writes in order. A write is a section, a key and a value; each of these three is a 32-bit
// length in native byte order, followed by its bytes. The algorithm list is a write with an empty value, then
// one write for each name, all with the section "" and the key "algorithms".
std::vector<uint8_t> gRecord;

void append(const void* bytes, size_t size) {
  const auto length = static_cast<int32_t>(size);
  const auto* const lengthBytes = reinterpret_cast<const uint8_t*>(&length);
  const auto* const first = static_cast<const uint8_t*>(bytes);
  gRecord.insert(gRecord.end(), lengthBytes, lengthBytes + sizeof length);
  gRecord.insert(gRecord.end(), first, first + size);
}

void appendWrite(std::string_view section, std::string_view key, const void* value, size_t size) {
  append(section.data(), section.size());
  append(key.data(), key.size());
  append(value, size);
}

int setValue(void* /*block*/, const char* section, const char* key, void* data, unsigned size) {
  appendWrite(section, key, data, size);
  return 0;
}

int process(const AlgoProcessRecord& record) {
  appendWrite("", "algorithms", "", 0);
  for (const std::string& name : record.algoList) appendWrite("", "algorithms", name.data(), name.size());
  callBackDone(record.callbackCookie, record.nativeReq);
  return 0;
}

}  // namespace
}  // namespace orlu::trial

#define EXPORTED extern "C" __attribute__((visibility("default")))

EXPORTED void AlgoInterfaceEntry(orlu::AlgoInterfaceCallbacks* table) {
  orlu::trial::fillAnsweringTable(*table, &orlu::trial::gToken);
  table->process = orlu::trial::process;
  table->metadataOps.setValue = orlu::trial::setValue;
}

// TrialLibrary.take(): returns and clears the record; returns null if the VM has no memory for it.
EXPORTED JNIEXPORT jbyteArray JNICALL
Java_com_orlu_orlu3rdalgoservice_tool_explain_TrialLibrary_take(JNIEnv* env, jclass /*clazz*/) {
  std::vector<uint8_t>& record = orlu::trial::gRecord;
  const auto size = static_cast<jsize>(record.size());
  jbyteArray bytes = env->NewByteArray(size);
  if (bytes != nullptr) {
    env->SetByteArrayRegion(bytes, 0, size, reinterpret_cast<const jbyte*>(record.data()));
  }
  record.clear();
  return bytes;
}
