// The contents of result callbacks.
#pragma once

#include <cstdint>
#include <string>
#include <vector>

#include "algo_interface.h"

namespace orlu::standin {

// Returns the callback's data: a CallbackHeader, the name, the payload.
std::vector<uint8_t> callbackMessage(uint64_t nativeReq, const std::string& name, const void* payload,
                                     size_t payloadSize);

// Calls, on this thread, the result callback whose address is the cookie. Does nothing for cookie 0.
void sendCallback(uint64_t cookie, const std::vector<uint8_t>& message,
                  const std::vector<android::hardware::hidl_handle>& handles);

}  // namespace orlu::standin
