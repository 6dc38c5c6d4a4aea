// Connects this thread to the Java VM. Without a VM in the process, these functions do nothing.
#pragma once

namespace orlu::standin {

// Leaves a Java exception pending on this thread, if it is attached.
void leaveJavaException();
// Attaches this thread as a daemon, so that the VM does not wait for it to end.
void attachToJava();
void detachFromJava();

}  // namespace orlu::standin
