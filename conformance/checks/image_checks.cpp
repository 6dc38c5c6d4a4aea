// Images: where a library writes, and what.
#include "checks.h"
#include "scene.h"

namespace orlu::conform {
namespace {

// Size of a JPEG that is left, and whether it is one.
void judgeJpeg(const Scene& scene, const Image& output) {
  int32_t size = 0;
  if (scene.parameters.get(kFeedback, "encoded_jpeg_size", &size, sizeof size) != 0) {
    const std::vector<uint8_t> bytes = output.bytes();
    HOLDS(bytes.size() < 2 || bytes[0] != 0xFF || bytes[1] != 0xD8)
        << "a JPEG is written, and its size is not left under encoded_jpeg_size";
    note("jpegEncode is not offered");
    return;
  }
  const std::vector<uint8_t> bytes = output.bytes();
  HOLDS(size >= 4 && static_cast<size_t>(size) <= bytes.size())
      << "encoded_jpeg_size is " << size << ", in an output of " << bytes.size();
  if (size < 4 || static_cast<size_t>(size) > bytes.size()) return;
  const auto end = static_cast<size_t>(size);
  HOLDS(bytes[0] == 0xFF && bytes[1] == 0xD8) << "the JPEG does not begin with its marker";
  HOLDS(bytes[end - 2] == 0xFF && bytes[end - 1] == 0xD9)
      << "there is no end marker where encoded_jpeg_size, " << size << ", says that the JPEG ends";
  note("a JPEG of " + std::to_string(size) + " bytes");
}

}  // namespace

void checkOutputs() {
  OPEN_LIBRARY(library);
  for (int32_t format : Image::formats()) {
    for (const Layout& layout : kLayouts) {
      Scene scene;
      // An odd size, too, and one whose memory ends where a page does.
      for (const auto& [width, height] : {
               std::pair{64, 64},
               std::pair{67, 45}
      }) {
        const ImageShape shape = {
            format, width, height, layout.padding, layout.paddingRows, layout.isHardwareBuffer};
        const Image input(shape, 5);
        const Image output(shape, 6);
        Request request;
        request.nativeReq = static_cast<uint64_t>(width);
        request.inputs = {&input};
        request.outputs = {&output};
        const std::string what = describe(input.frame()) + " " + layout.name;
        step("an image " + what);
        submit(scene.client, scene.inbox, scene.parameters, request);
        HOLDS(scene.inbox.waitFor(request.nativeReq)) << kNoCallback << "an image " << what;
        HOLDS(output.strayWrite().empty()) << what << ": " << output.strayWrite();
        HOLDS(input.isAsMade() && input.strayWrite().empty()) << what << ": the input is written";
      }
    }
  }
  Scene scene;
  const Image jpeg({kFormatJpeg, 256, 256, 0, 0, false}, 7);
  Request request;
  request.algorithms = {"jpegEncode"};
  request.inputs = {&scene.input};
  request.outputs = {&jpeg};
  step("a request for jpegEncode");
  submit(scene.client, scene.inbox, scene.parameters, request);
  HOLDS(scene.inbox.waitFor(request.nativeReq)) << kNoCallback << "a request for jpegEncode";
  HOLDS(jpeg.strayWrite().empty()) << jpeg.strayWrite();
  judgeJpeg(scene, jpeg);
}

}  // namespace orlu::conform
