// Functions that connect the calling thread to the Java VM. Without a VM in the process, they do nothing.
#pragma once

namespace orlu::standin {

// Leaves a Java exception pending on this thread, if the thread is attached.
void leaveJavaException();
// Attaches this thread as a daemon, so that the VM does not wait for the thread to end.
void attachToJava();
void detachFromJava();

}  // namespace orlu::standin
