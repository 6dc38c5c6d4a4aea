// What travels through a result callback.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "algo_interface.h"

namespace orlu::standin {

// The callback's data: a CallbackHeader, the name, the payload.
std::vector<uint8_t> callbackMessage(uint64_t nativeReq, const std::string& name, const void* payload,
                                     size_t payloadSize);

// Calls the result callback behind the cookie on this thread; nothing when there is none.
void sendCallback(uint64_t cookie, const std::vector<uint8_t>& message,
                  const std::vector<android::hardware::hidl_handle>& handles);

}  // namespace orlu::standin
