// This thread and the Java VM. Without a VM in the process both do nothing.
#pragma once

namespace orlu::standin {

// Attaches as a daemon, so that the VM does not wait for this thread to end.
void attachToJava();
void detachFromJava();

}  // namespace orlu::standin
