// The checks by their files; check_list.cpp puts them in order.
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
// process_checks.cpp
void checkLeaks();
void checkExceptions();
void checkHostile();
// java_checks.cpp
void checkJava();

}  // namespace orlu::conform
