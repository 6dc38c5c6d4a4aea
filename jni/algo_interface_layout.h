// Compile-time checks of the sizes and offsets in algo_interface.h. Include this header in one source file of
// an algorithm library. A build for a phone must have the phone's layout.
#pragma once

#include "algo_interface.h"

#if defined(__ANDROID__) && (UINTPTR_MAX != UINT32_MAX || !defined(_LIBCPP_VERSION))
#error "the service is 32-bit and uses libc++: build for armeabi-v7a with libc++"
#endif

namespace orlu {

// `phone` is the value on 32-bit ARM, `workstation` the value on a 64-bit machine. Only the value for the
// machine of this build is checked.
#if UINTPTR_MAX == UINT32_MAX
#define ORLU_LAYOUT(found, phone, workstation) static_assert((found) == (phone), #found " is not " #phone)
#else
#define ORLU_LAYOUT(found, phone, workstation) \
  static_assert((found) == (workstation), #found " is not " #workstation)
#endif
#define ORLU_SIZE(record, phone, workstation) ORLU_LAYOUT(sizeof(record), phone, workstation)
#define ORLU_OFFSET(record, field, phone, workstation) \
  ORLU_LAYOUT(offsetof(record, field), phone, workstation)

ORLU_SIZE(AlgoFrameInfo, 128, 152);
ORLU_OFFSET(AlgoFrameInfo, format, 0, 0);
ORLU_OFFSET(AlgoFrameInfo, width, 4, 4);
ORLU_OFFSET(AlgoFrameInfo, height, 8, 8);
ORLU_OFFSET(AlgoFrameInfo, size, 12, 12);
ORLU_OFFSET(AlgoFrameInfo, stride, 16, 16);
ORLU_OFFSET(AlgoFrameInfo, scanline, 32, 32);
ORLU_OFFSET(AlgoFrameInfo, reserved, 48, 48);
ORLU_OFFSET(AlgoFrameInfo, nativeHandle, 52, 56);
ORLU_OFFSET(AlgoFrameInfo, fdCount, 56, 64);
ORLU_OFFSET(AlgoFrameInfo, fd, 60, 68);
ORLU_OFFSET(AlgoFrameInfo, fdSize, 76, 84);
ORLU_OFFSET(AlgoFrameInfo, planeCount, 92, 100);
ORLU_OFFSET(AlgoFrameInfo, planeData, 96, 104);
ORLU_OFFSET(AlgoFrameInfo, planeSize, 112, 136);
ORLU_SIZE(AlgoMetadataEntry, 40, 48);
ORLU_OFFSET(AlgoMetadataEntry, block, 4, 8);
ORLU_OFFSET(AlgoMetadataEntry, reserved, 8, 16);
ORLU_OFFSET(AlgoMetadataEntry, size, 36, 44);
ORLU_SIZE(AlgoProcessRecord, 104, 160);
ORLU_OFFSET(AlgoProcessRecord, nativeReq, 8, 8);
ORLU_OFFSET(AlgoProcessRecord, algoList, 16, 16);
ORLU_OFFSET(AlgoProcessRecord, client, 28, 40);
ORLU_OFFSET(AlgoProcessRecord, callbackCookie, 32, 48);
ORLU_OFFSET(AlgoProcessRecord, reqId, 40, 56);
ORLU_OFFSET(AlgoProcessRecord, reserved, 48, 64);
ORLU_OFFSET(AlgoProcessRecord, metadata, 68, 88);
ORLU_OFFSET(AlgoProcessRecord, inputFrames, 80, 112);
ORLU_OFFSET(AlgoProcessRecord, outputFrames, 92, 136);
ORLU_SIZE(AlgoCommandRecord, 64, 88);
ORLU_OFFSET(AlgoCommandRecord, client, 16, 16);
ORLU_OFFSET(AlgoCommandRecord, first, 24, 24);
ORLU_OFFSET(AlgoCommandRecord, second, 32, 32);
ORLU_OFFSET(AlgoCommandRecord, data, 40, 40);
ORLU_OFFSET(AlgoCommandRecord, metadata, 52, 64);
ORLU_SIZE(AlgoCreateClientRecord, 16, 16);
ORLU_SIZE(AlgoInitRecord, 8, 16);
ORLU_OFFSET(AlgoInitRecord, client, 4, 8);
ORLU_SIZE(AlgoUninitRecord, 12, 24);
ORLU_OFFSET(AlgoUninitRecord, client, 4, 8);
ORLU_OFFSET(AlgoUninitRecord, mode, 8, 16);
ORLU_SIZE(AlgoFlushRecord, 4, 8);

// The layout of records with strings or functions depends on the C++ library: libc++ on the phone, libstdc++
// on a workstation. Other combinations are not checked (docs/arm.md).
#ifdef _LIBCPP_VERSION
#define ORLU_HAS_LIBCXX 1
#else
#define ORLU_HAS_LIBCXX 0
#endif
#if (UINTPTR_MAX == UINT32_MAX) == ORLU_HAS_LIBCXX
// GCC warns about offsetof in records without standard layout, although the offsets are correct.
#pragma GCC diagnostic push
#pragma GCC diagnostic ignored "-Winvalid-offsetof"
ORLU_SIZE(AlgoGetDataRecord, 24, 56);
ORLU_OFFSET(AlgoGetDataRecord, block, 12, 32);
ORLU_SIZE(AlgoTranslateParamFileRecord, 24, 48);
ORLU_OFFSET(AlgoTranslateParamFileRecord, identifier, 12, 16);
ORLU_SIZE(AlgoMetadataVisitor, 24, 32);
ORLU_SIZE(AlgoMetadataOps, 216, 288);
ORLU_OFFSET(AlgoMetadataOps, setValue, 72, 96);
ORLU_OFFSET(AlgoMetadataOps, paramSystemDownloadToAlgo, 192, 256);
ORLU_SIZE(AlgoInterfaceCallbacks, 464, 616);
ORLU_OFFSET(AlgoInterfaceCallbacks, init, 8, 8);
ORLU_OFFSET(AlgoInterfaceCallbacks, metadataOps, 224, 296);
ORLU_OFFSET(AlgoInterfaceCallbacks, translateParamFile, 440, 584);
#pragma GCC diagnostic pop
#endif

#undef ORLU_HAS_LIBCXX
#undef ORLU_SIZE
#undef ORLU_OFFSET
#undef ORLU_LAYOUT

}  // namespace orlu
