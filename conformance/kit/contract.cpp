#include "contract.h"

#include "algo_interface.h"
#include "known_names.h"

namespace orlu::conform {
namespace {

// Constants of the interface's header replace the placeholders in this text.
constexpr char kText[] =
    R"(- **The table.** The library is opened by its name with RTLD_NOW, when the first client is
  made, and is never closed. The entry is called once for the process and once more for each client, each
  time with a zeroed table, and maybe on two threads at once. Reserved callables are never called.
- **Threads.** Every callable is called on a thread of Java's, which is attached to the Java VM; block
  operations also on the threads that the library calls back on. Several clients' threads may be in any
  callable at once; those of one client come one at a time.
- **A client.** createClient asks for version {version}. init follows with type 0 when Java asks for it,
  which it need not. uninit comes for the types 1, 2, 3 and 5 in this order, with mode 1 or 2 when Java
  releases, and with 0 at the end. A client ends with flush, uninit with mode 0 and destroyClient,
  whatever was called before. Its handle is not used after that.
- **A parameter block** is made before its request is submitted and lives until the results are read:
  those of a synchronous request when it was called back or after the wait; those of a full-async one when
  Java asks for them. One that was never announced to Java goes with its client. A callback inside that
  time finds all that was set.
- **A camera block** lives from before process until process returns. No block is used after
  destroyMetadata, which is called once for each.
- **Values.** setValue is called with memory that may change when it returns. getValue is called with
  memory of exactly the size that it names, which holds the value's default already: what is not found
  must leave it alone. Sections and keys end with a zero. Values of up to 8482 bytes are set.
- **The record** of process, with its lists, frames and handles, lives until process returns. Descriptors
  are lent until the end of a synchronous request; for a full-async one until process returns, which is
  before its callback. That of translateParamFile is lent until that returns.
- **The cookie** is the address of a function that stays valid until the process ends, one for each
  client. It may be called on any thread, by several at once, before process returns, after the client is
  gone, and with any bytes. It throws nothing and keeps nothing of its arguments. For a synchronous
  request it wakes a thread and returns. For a full-async one, and for a light-stream event, it calls Java
  and returns when that does; on a thread that is not attached to the Java VM the callback is lost. No
  thread is left attached that was not.
- **Waiting.** A synchronous request waits for its callback for 10 seconds from the return of process, and
  then reads the results as they are. Nothing is aborted. A full-async request waits for ever.
- **Callbacks.** An early one, before process has returned, is not lost. A late one, after the wait, does
  nothing. A second one for a synchronous request does nothing; for a full-async one Java is called again.
  One for an unknown request or under an unknown name does nothing, and so does one of fewer than 21
  bytes, one whose name is longer than its data, and a light-stream event with a payload under {event}
  bytes.
- **Results of calls** are not looked at, but for the handles of createClient and createMetadata, the size
  of getSize, and the status of getValue and of the visitors' operations. A null client is passed on like
  any other; a null block never reaches the library.
- **What is not offered** is logged and skipped. An exception out of a callable is caught there, logged,
  and counts as a failure; a Java exception left on the thread is cleared and logged. Nothing is tried
  again.
- **Visitors** may be called on the thread and during the call that they were handed to, as often as the
  library likes, and may use block operations. They throw nothing. Called elsewhere or later they return
  -1.
- **getData** is to leave its answer in the block of its record under `{section}`, `{key}`; {answer} bytes
  of it are read, up to the first zero.
- **What the library promises** in return, beside the lifetimes above:
  - **Pixels.** Input and output of one format, width and height: every pixel of every plane of every
    output is written, at the output's own strides, an odd last column and row of chroma included. Inputs,
    padding, what lies between planes and behind an image stay as they are. May stay untouched: an output of
    another format or size, one of an unknown format, and a JPEG that does not fit, whose size is 0 then.
    `planeData` is null: memory is reached by mapping the descriptor. The same request leaves the same
    bytes, whatever memory held and whichever requests came before.
  - **Values.** A block keeps {values} values; sections and keys are compared whole, with up to 120 letters.
    Blocks may be used by several threads at once, one block too.
  - **Clients.** destroyClient returns when nothing works for the client any more, and leaves no thread,
    descriptor or memory of it behind. A client works again when init follows an uninit with mode 1 or 2,
    and whatever happens to another client.
  - **Callbacks.** Inside one Java may finish the request, submit the next, flush, abort, and make or destroy
    clients, the callback's own too; all of that returns. While a callback has not returned, calls on other
    threads do, but for flush and destroyClient of its client.
  - **Calls return.** flush need not wait: what is out when it returns may be called back later.
  - **Resources.** Each descriptor that the library opens is closed once, and none other. A request leaves
    nothing behind, not a byte.
- **The end of the process** is announced by command, with the data `{kill}` and a zero. Nothing is waited
  for then.
)";

void replace(std::string& text, const std::string& name, const std::string& value) {
  const size_t at = text.find("{" + name + "}");
  if (at != std::string::npos) text.replace(at, name.size() + 2, value);
}

}  // namespace

std::string contract() {
  std::string text = kText;
  replace(text, "version", std::to_string(kAlgoTableVersion));
  replace(text, "event", std::to_string(sizeof(LightStreamEvent)));
  replace(text, "section", kFeedback);
  replace(text, "key", kQueryResult);
  replace(text, "answer", std::to_string(kQueryResultSize));
  replace(text, "kill", kNotifyKill);
  replace(text, "values", std::to_string(kMostValues));
  return text;
}

}  // namespace orlu::conform
