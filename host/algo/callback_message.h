// What travels through a result callback.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "algo_interface.h"

namespace orlu::standin {

// The payload of a "lightStreamCb".
struct LightStreamEvent {
  uint64_t reserved0 = 0;
  uint64_t reqId = 0;
  int64_t eventType = 1;
  int32_t cropRegion[4] = {};  // left, top, width, height
  float zoomRatio = 1.0F;
  uint32_t reserved44 = 0;
};
static_assert(sizeof(LightStreamEvent) == 48);
static_assert(offsetof(LightStreamEvent, cropRegion) == 24);
static_assert(offsetof(LightStreamEvent, zoomRatio) == 40);

// The callback's data: 8 unused bytes, the request, the name's length, the name, the payload.
std::vector<uint8_t> callbackMessage(uint64_t nativeReq, const std::string& name, const void* payload,
                                     size_t payloadSize);

// Calls the result callback behind the cookie on this thread; nothing when there is none.
void sendCallback(uint64_t cookie, const std::vector<uint8_t>& message,
                  const std::vector<android::hardware::hidl_handle>& handles);

}  // namespace orlu::standin
