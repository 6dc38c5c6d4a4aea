// All checks, grouped by file. check_list.cpp defines their order.
#pragma once

namespace orlu::conform {

// table_checks.cpp
void checkLoading();
void checkMandatory();
void checkLayout();
// client_checks.cpp
void checkClients();
void checkConcurrency();
void checkQueries();
// block_checks.cpp
void checkSetValue();
void checkGetValue();
void checkBlocks();
void checkVisitors();
// request_checks.cpp
void checkProcess();
void checkCallbacks();
void checkRequests();
// image_checks.cpp
void checkOutputs();
void checkPixels();
// process_checks.cpp
void checkExceptions();
void checkHostile();
// resource_checks.cpp
void checkLeaks();
void checkDescriptors();
// repeat_checks.cpp
void checkRepeats();
// thread_checks.cpp
void checkKeys();
void checkThreads();
// life_checks.cpp
void checkLives();
// callback_checks.cpp
void checkInside();
void checkOverlap();
void checkFlush();
// java_checks.cpp
void checkJava();

}  // namespace orlu::conform
