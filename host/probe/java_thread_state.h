// Whether this thread is attached to the Java VM.
#pragma once

namespace orlu::probe {

enum class JavaThreadState { kNoVm, kAttached, kNotAttached };

// Returns the state of this thread; never attaches it.
JavaThreadState javaThreadState();

}  // namespace orlu::probe
