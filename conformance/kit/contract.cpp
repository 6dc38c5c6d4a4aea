#include "contract.h"

#include "algo_interface.h"
#include "known_names.h"

namespace orlu::conform {
namespace {

// contract() replaces the placeholders in this text by constants.
constexpr char kText[] =
    R"(- **The table.** When the first client is created, the service opens the library by its name with
  RTLD_NOW, and never closes it. It calls the entry once for the process and once more for each
  client, each time with a zeroed table, possibly on two threads at once. It never calls reserved
  callables.
- **Threads.** Every callable is called on a Java thread, which is attached to the Java VM, or,
  inside a callback, on the callback's thread. Calls for different clients may run at the same
  time. Calls for one client run one at a time, except those that Java makes inside a callback.
- **A client.** createClient requests version {version}. init follows with type 0 if Java asks for
  it. uninit is called for the types 1, 2, 3 and 5 in this order: with mode 1 or 2 when Java
  releases the client (mode 0 if Java passes no image format), and with mode 0 before the client
  is destroyed. The last calls for a client are flush, uninit with mode 0 and destroyClient,
  whatever was called before; for a client that exists only for a command, only destroyClient. The
  handle is not used afterwards.
- **A parameter block** is created before its request is submitted, and lives until the results
  are read: for a synchronous request, after its callback or after the wait; for a full-async one,
  when Java asks for them. If Java was never told to fetch the results, the block is destroyed with
  its client. A callback during the block's life finds all values that were set.
- **A camera block** lives from before process until process returns. No block is used after
  destroyMetadata, which is called once for each.
- **Values.** The memory passed to setValue may change once setValue returns. The memory passed to
  getValue has exactly the size in the call, and contains the default value: if the block has no
  value for the key, the library must leave this memory unchanged. Sections and keys end with a
  zero byte. The service's values have up to 8482 bytes.
- **The record** of process, with its lists, frames and handles, lives until process returns.
  Descriptors are valid until the end of a synchronous request; for a full-async one, only until
  process returns, even if its callback is still to come. The descriptor passed to
  translateParamFile is valid until translateParamFile returns.
- **The cookie** is the address of a function. Each client has its own cookie, which stays valid
  until the process ends. It may be called on any thread, on several at once, before process
  returns, after the client is destroyed, and with any bytes. It throws nothing and stores none of
  its arguments. For a synchronous request it wakes a thread and returns. For a full-async one, and
  for a light-stream event, it calls Java and returns when Java returns; on a thread that is not
  attached to the Java VM, the callback is lost. Threads that are not attached stay unattached.
- **Waiting.** A synchronous request waits up to 10 seconds for its callback, from the return of
  process, and then reads the results as they are. Nothing is aborted. A full-async request has no
  timeout.
- **Callbacks.** A callback that arrives before process returns is not lost. A second callback for a
  full-async request calls Java again. These callbacks have no effect: one after the wait, a second
  one for a synchronous request, one for an unknown request, one with an unknown name, one of fewer
  than 21 bytes, one whose name is longer than its data, and a light-stream event with a payload
  of fewer than {event} bytes.
- **Results of calls** are ignored, except the handles of createClient and createMetadata, and the
  size of getSize. A null client is passed on like any other; no block operation gets a null
  block.
- **A missing callable** is skipped and logged. Of the block operations, only createMetadata and
  destroyMetadata are logged. Without getSize, process is skipped, too. An exception from a
  callable is caught at the call, logged, and counts as a failure; a Java exception left on the
  thread is cleared and logged. No call is retried.
- **Visitors** may be called any number of times during the call that they were passed to, on its
  thread, and may use block operations. They throw nothing. On other threads or later, they return
  -1.
- **getData** must set its answer in the block that its record names, under the section
  `{section}` and the key `{key}`. The service asks for {answer} bytes, and uses
  those before the first zero byte.
- **The library promises** in return, besides the lifetimes above:
  - **Pixels.** If input and output have the same format, width and height, every pixel of every
    plane of every output is written, at the output's own strides, including the last chroma column
    and row of an image with odd sides. Inputs, padding, and bytes between planes and after an image
    stay unchanged. These outputs may stay unwritten: one whose format or size differs from the
    input's, one of an unknown format, and a JPEG that does not fit, whose size is then 0.
    `planeData` is null: map the descriptor to access the memory. Equal requests give equal bytes,
    independent of the previous contents of memory and of previous requests.
  - **Values.** A block stores {values} values; sections and keys have up to 120 characters and
    are compared whole. Several threads may use blocks at once, also the same block.
  - **Clients.** destroyClient returns when all work for the client has stopped, and releases the
    client's threads, descriptors and memory. After uninit with mode 1 or 2, init makes the client
    work again. Calls for one client do not affect the others.
  - **Callbacks.** Inside a callback, Java may finish the request, submit the next, flush, abort,
    and create or destroy clients, even the callback's own; all these calls return. During a
    callback, calls on other threads return, except flush and destroyClient of the callback's
    client.
  - **Calls return.** flush need not wait: requests in flight when it returns may be called back
    later.
  - **Resources.** The library closes each descriptor that it opens exactly once, and no other
    descriptor. A request leaks nothing, not even one byte.
- **The end of the process** is announced by a call of command with the data `{kill}` and a
  zero byte. The process then ends without waiting for requests.
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
