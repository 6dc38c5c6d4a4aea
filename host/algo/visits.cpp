#include "visits.h"

#include <thread>
#include <utility>
#include <vector>

namespace orlu::standin {
namespace {

int call(const AlgoScript& script, const AlgoMetadataVisitor& visitor, ParameterSet::Value& value) {
  const auto size = static_cast<unsigned>(value.bytes.size());
  const int status = visitor(value.section.c_str(), value.key.c_str(), value.bytes.data(), size);
  if (script.visited) script.visited(status);
  return status;
}

}  // namespace

int Visits::visit(const AlgoScript& script, void* block, const AlgoMetadataVisitor& visitor,
                  ParameterSet::Value& value) {
  int status = 0;
  switch (script.visitorUse) {
    case VisitorUse::kHere:
      return call(script, visitor, value);
    case VisitorUse::kOtherThread:
      std::thread([&] { status = call(script, visitor, value); }).join();
      return status;
    case VisitorUse::kLater:
      break;
  }
  std::lock_guard lock(mMutex);
  mKept.emplace(block, [script, visitor, value]() mutable { call(script, visitor, value); });
  return 0;
}

void Visits::callKept(void* block) {
  std::vector<std::function<void()>> calls;
  {
    std::lock_guard lock(mMutex);
    const auto [first, last] = mKept.equal_range(block);
    for (auto kept = first; kept != last; ++kept) calls.push_back(std::move(kept->second));
    mKept.erase(first, last);
  }
  for (const auto& kept : calls) kept();
}

}  // namespace orlu::standin
