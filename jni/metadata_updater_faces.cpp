// The faces of a frame, in the input image's coordinates.

#include <algorithm>

#include "image_format.h"
#include "log.h"
#include "metadata_updater_rows.h"

namespace orlu {
namespace {

constexpr char kLogTag[] = "_V_VASJNI-MetadataUpdater";
constexpr char kOperation[] = "updateCommonTags";  // named by the lines of its parts

bool isEmpty(const __tagOrluRect& rect) {
  return rect.left >= rect.right || rect.top >= rect.bottom;
}

}  // namespace

// The camera's own face list is only asked when the combined one of a multi-camera system is not there.
_tagOrluFaceInfo MetadataUpdater::readFaces(const Frame& frame) {
  _tagOrluFaceInfo faces;
  if (mParser->getIntFaceArray(faces, kMaxFaces, "orlu.feedback.satFaceRect", frame.captureResult,
                               frame.composition) != 0) {
    mParser->getFaceInfo(faces, kMaxFaces, "android.statistics.faces", frame.captureResult,
                         frame.composition);
  }
  faces.count = std::min(faces.count, kMaxFaces);
  return faces;
}

void MetadataUpdater::updateFaceInfo() {
  _tagOrluFaceInfo faces = readFaces(firstFrame());
  // The first empty rectangle ends the list, also when valid ones follow.
  const auto* const end = faces.rects + faces.count;
  const auto* const empty = std::find_if(faces.rects, faces.rects + faces.count, isEmpty);
  if (empty != end) {
    faces.count = static_cast<int32_t>(empty - faces.rects);
    LOGD_AS(kOperation, "faceRect is error, change faceNum to available faceNum: %d", faces.count);
  }
  if (const AlgoFrameInfo* input = firstInput()) {
    convertFace(faces, input->width, input->height, isRawImageFormat(input->format));
  }
  write(kSystem, "face_info", faces);
  const __tagOrluRect& first = faces.rects[0];
  LOGD_AS(kOperation, "start process input face num %d (%d %d %d %d)", faces.count, first.left, first.top,
          first.right, first.bottom);
}

}  // namespace orlu
