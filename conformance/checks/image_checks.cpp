// Checks which bytes of its images a library writes, and the JPEGs that it writes.
#include <algorithm>

#include "checks.h"
#include "scene.h"

namespace orlu::conform {
namespace {

constexpr int kMostMissing = 12;  // the check stops after this many missing callbacks

void judgeJpeg(const Scene& scene, const Image& output) {
  int32_t size = 0;
  if (scene.parameters.get(kFeedback, "encoded_jpeg_size", &size, sizeof size) != 0) {
    const std::vector<uint8_t> bytes = output.bytes();
    HOLDS(bytes.size() < 2 || bytes[0] != 0xFF || bytes[1] != 0xD8)
        << "a JPEG is written, but encoded_jpeg_size is not set";
    note("jpegEncode is not offered");
    return;
  }
  const std::vector<uint8_t> bytes = output.bytes();
  HOLDS(size >= 4 && static_cast<size_t>(size) <= bytes.size())
      << "encoded_jpeg_size is " << size << ", in an output of " << bytes.size() << " bytes";
  if (size < 4 || static_cast<size_t>(size) > bytes.size()) return;
  const auto end = static_cast<size_t>(size);
  HOLDS(bytes[0] == 0xFF && bytes[1] == 0xD8) << "the JPEG does not begin with its marker";
  HOLDS(bytes[end - 2] == 0xFF && bytes[end - 1] == 0xD9)
      << "no JPEG end marker before byte " << size << ", the value of encoded_jpeg_size";
  note("a JPEG of " + std::to_string(size) + " bytes");
}

// Requests JPEGs into outputs that are smaller than any JPEG of the input.
void tryTightJpeg(Scene& scene) {
  for (int32_t room : {1, 200}) {
    const Image tight({kFormatJpeg, room, 1, 0, 0, false}, 7);
    Request request;
    request.nativeReq = static_cast<uint64_t>(room) + 1;
    request.algorithms = {"jpegEncode"};
    request.inputs = {&scene.input};
    request.outputs = {&tight};
    const std::string what = "a JPEG into an output of " + std::to_string(room) + " bytes";
    step(what);
    const int32_t unset = -1;
    scene.parameters.set(kFeedback, "encoded_jpeg_size", &unset, sizeof unset);
    submit(scene.client, scene.inbox, scene.parameters, request);
    HOLDS(scene.inbox.waitFor(request.nativeReq)) << kNoCallback << what;
    int32_t size = 0;
    scene.parameters.get(kFeedback, "encoded_jpeg_size", &size, sizeof size);
    HOLDS(tight.strayWrite().empty() && size <= room)
        << what << " must stay inside it: " << (tight.strayWrite().empty() ? "" : tight.strayWrite() + "; ")
        << "encoded_jpeg_size is " << size
        << "; usual cause: the encoder's bytes are copied without checking fdSize";
  }
}

// In order: even, odd in both directions, very small, one row, and (in RGBA) rows of more than a memory page.
constexpr std::pair<int32_t, int32_t> kSizes[] = {
    {64,   48},
    {67,   45},
    {2,    2 },
    {33,   1 },
    {1920, 18},
};

// Runs one request twice, into outputs filled with two different patterns. A byte that is unchanged in both
// runs was not written.
class PairOfRuns {
public:
  PairOfRuns(Scene& scene, const ImageShape& from, const ImageShape& to, std::vector<std::string> algorithms,
             size_t outputs)
      : mInput(from, 5) {
    Request request;
    request.algorithms = std::move(algorithms);
    request.inputs = {&mInput};
    static uint64_t last = 0;  // unique ids, so that an extra callback doesn't count for the next request
    for (int filler : {70, 9}) {
      request.nativeReq = ++last;
      std::vector<std::unique_ptr<Image>> images;
      request.outputs.clear();
      for (size_t i = 0; i < outputs; ++i) {
        images.push_back(std::make_unique<Image>(to, filler + static_cast<int>(i)));
        request.outputs.push_back(images.back().get());
      }
      submit(scene.client, scene.inbox, scene.parameters, request);
      mIsDone = mIsDone && scene.inbox.waitFor(request.nativeReq);
      scene.inbox.forget();
      mRuns.push_back(std::move(images));
    }
  }

  bool isDone() const { return mIsDone; }
  // Returns "" or describes the first byte that neither run wrote.
  std::string untouched(size_t index) const {
    const Image& first = *mRuns[0][index];
    const Image& second = *mRuns[1][index];
    const std::vector<uint8_t> now[] = {first.bytes(), second.bytes()};
    for (const PixelRow& row : first.rows()) {
      for (size_t i = row.begin; i < row.begin + row.bytes; ++i) {
        if (now[0][i] != first.pattern()[i] || now[1][i] != second.pattern()[i]) continue;
        return "byte " + std::to_string(i - row.begin) + " of " + std::to_string(row.bytes) + " in row " +
               std::to_string(row.row) + " of plane " + std::to_string(row.plane) + " is unchanged";
      }
    }
    return "";
  }

private:
  Image mInput;
  std::vector<std::vector<std::unique_ptr<Image>>> mRuns;
  bool mIsDone = true;
};

// Copies an image to two outputs with this layout and checks that every pixel is written. Skips packed raw
// formats if the padding differs from the input's, because packed raw outputs must have the input's strides.
void writeAllPlanes(Scene& scene, const ImageShape& from, const Layout& layout) {
  const bool isPacked = from.format == kFormatMipiRaw10 || from.format == kFormatMipiRaw12;
  const bool isSame = from.padding == layout.padding && from.paddingRows == layout.paddingRows;
  if (isPacked && !isSame) return;
  // A RAW16 stride counts pixels. Strides of 2 * width and more are skipped: a library may take such a stride
  // for a number of bytes.
  if (from.format == kFormatRaw16 && std::max(from.padding, layout.padding) >= 2 * from.width) return;
  ImageShape to = from;
  to.padding = layout.padding;
  to.paddingRows = layout.paddingRows;
  to.isHardwareBuffer = layout.isHardwareBuffer;
  const std::string what = describe(Image(from).frame()) +
                           (isSame ? "" : ", padding of input and output differs") + ", the output " +
                           layout.name;
  step("a copy of " + what);
  const PairOfRuns runs(scene, from, to, {}, 2);
  HOLDS(runs.isDone()) << kNoCallback << "a copy of " << what;
  if (!runs.isDone()) return;
  const char* usual = isSame ? "the null planeData is used, or an odd width is halved"
                             : "the input's strides are used for the output";
  for (size_t i = 0; i < 2; ++i) {
    const std::string untouched = runs.untouched(i);
    if (i == 1) usual = "only the first output is written";
    HOLDS(untouched.empty()) << "output " << i << " of a copy of " << what
                             << ": every pixel must be written, but " << untouched
                             << "; usual cause: " << usual;
    if (!untouched.empty()) return;
  }
}

}  // namespace

void checkPixels() {
  OPEN_LIBRARY(library);
  Scene scene;
  size_t copies = 0;
  for (int32_t format : Image::formats()) {
    if (!Image::hasKnownLayout(format)) continue;
    for (const auto& [width, height] : kSizes) {
      for (const Layout& layout : kLayouts) {
        for (int32_t padding : {0, 32}) {
          writeAllPlanes(scene, {format, width, height, padding, 0, false}, layout);
          ++copies;
          if (testing::Test::HasFailure()) return;
        }
      }
    }
  }
  note(std::to_string(copies) +
       " combinations of sizes and layouts; JPEGs and unknown formats are not checked");
}

void checkOutputs() {
  OPEN_LIBRARY(library);
  int missing = 0;
  for (int32_t format : Image::formats()) {
    for (const Layout& layout : kLayouts) {
      Scene scene;
      // In some formats, an image of the first size ends at the end of a page. The second size is odd.
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
        const bool came = scene.inbox.waitFor(request.nativeReq);
        HOLDS(came) << kNoCallback << "an image " << what;
        if (!came && ++missing == kMostMissing) return;
        HOLDS(output.strayWrite().empty()) << what << ": " << output.strayWrite();
        HOLDS(input.isAsMade() && input.strayWrite().empty()) << what << ": the input was written to";
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
  tryTightJpeg(scene);
}

}  // namespace orlu::conform
