// This thread and the Java VM.
#pragma once

namespace orlu::probe {

enum class JavaThreadState { kNoVm, kAttached, kNotAttached };

// Makes nothing known to the VM that it does not know.
JavaThreadState javaThreadState();

}  // namespace orlu::probe
