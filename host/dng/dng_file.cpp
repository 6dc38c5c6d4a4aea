#include "dng_file.h"

#include <algorithm>
#include <climits>
#include <utility>

namespace orlu::host {
namespace {

constexpr int kUncompressed = 1;
constexpr int kLosslessJpeg = 7;
constexpr int kColorFilterArray = 32803;
constexpr int kTileWidth = 322;
constexpr int kTileLength = 323;
constexpr int kTileOffsets = 324;
constexpr int kShort = 3;
constexpr unsigned kLittleEndian = 0x4949;
// Limits of a sensor's width and height, in samples: LibRaw rejects smaller sensors, and no sensor is larger.
constexpr int kLeastSide = 22;
constexpr int kLargestSide = 1 << 14;
// LibRaw represents Bayer patterns as numbers of at least this value, other patterns as smaller numbers.
constexpr unsigned kLeastBayer = 1000;
// The most samples per byte: lossless JPEG uses at least one bit per sample.
constexpr int64_t kSamplesPerByte = CHAR_BIT;
// Two values that are rare in samples; they show which samples a decoder did not write.
constexpr uint16_t kFirstMark = 0xA5C3;
constexpr uint16_t kSecondMark = 0x5A3C;

int64_t rowBytes(int width, int bits) {
  return (int64_t{width} * bits + CHAR_BIT - 1) / CHAR_BIT;
}

}  // namespace

// LibRaw prints no messages about damage; it counts errors, and problem() reports them.
DngFile::DngFile(const char* path)
    : LibRaw(LIBRAW_OPIONS_NO_MEMERR_CALLBACK | LIBRAW_OPIONS_NO_DATAERR_CALLBACK) {
  set_exifparser_handler(&DngFile::noteTag, this);
  const int status = open_file(path);
  if (findImage(status) && checkImage() && listBlocks()) checkBlocks();
}

// LibRaw calls this with the file positioned at the tag's value, and restores the position afterwards. The
// upper bits of `tag` are the number of the image, starting with 1.
void DngFile::noteTag(void* self, int tag, int type, int length, unsigned order, void*, INT64) {
  auto* const file = static_cast<DngFile*>(self);
  const int image = (tag >> 20) - 1;
  if (image < 0 || image >= LIBRAW_IFD_MAXCOUNT) return;
  Tiling& tiling = file->mTilings[image];
  const int name = tag & 0xFFFF;
  if (name == kTileOffsets) tiling.count = length;
  if (name != kTileWidth && name != kTileLength) return;
  unsigned value = file->get4();
  if (type == kShort) value = order == kLittleEndian ? value & 0xFFFF : value >> 16;
  (name == kTileWidth ? tiling.width : tiling.height) = int(value);
}

bool DngFile::fail(const std::string& problem) {
  mProblem = problem;
  return false;
}

bool DngFile::inRange(const char* name, int64_t value, int least, int most) {
  if (value >= least && value <= most) return true;
  const std::string wanted =
      least == most ? std::to_string(least) : std::to_string(least) + " to " + std::to_string(most);
  return fail(std::string(name) + ": expected " + wanted + ", found " + std::to_string(value));
}

bool DngFile::findImage(int openStatus) {
  if (imgdata.idata.dng_version == 0) {
    return fail("not a valid DNG file: no header contains a DNGVersion");
  }
  const unsigned images = libraw_internal_data.identify_data.tiff_nifds;
  const auto end = tiff_ifd + std::min(images, unsigned{LIBRAW_IFD_MAXCOUNT});
  const auto isRaw = [](const tiff_ifd_t& ifd) { return ifd.phint == kColorFilterArray; };
  mImage = std::find_if(tiff_ifd, end, isRaw);
  if (mImage == end) return fail("contains no raw image: no PhotometricInterpretation is 32803");
  if (!inRange("ImageWidth", mImage->t_width, kLeastSide, kLargestSide)) return false;
  if (!inRange("ImageLength", mImage->t_height, kLeastSide, kLargestSide)) return false;
  if (openStatus == LIBRAW_SUCCESS) return true;
  return fail(std::string("can't be read: ") + strerror(openStatus));
}

bool DngFile::checkImage() {
  if (!inRange("BitsPerSample", mImage->bps, 8, 16)) return false;
  if (!inRange("SamplesPerPixel", std::max(mImage->samples, 1), 1, 1)) return false;
  if (mImage->comp != kUncompressed && mImage->comp != kLosslessJpeg) {
    return fail("Compression: expected 1 or 7, found " + std::to_string(mImage->comp));
  }
  if (imgdata.idata.filters < kLeastBayer) {
    return fail(imgdata.idata.filters == LIBRAW_XTRANS
                    ? "CFAPattern: expected a Bayer mosaic, found a 6x6 mosaic"
                    : "CFAPattern: expected a Bayer mosaic, found none");
  }
  // LibRaw selects one of several images by its own rules.
  if (imgdata.sizes.raw_width == width() && imgdata.sizes.raw_height == height() &&
      libraw_internal_data.unpacker_data.data_offset == mImage->offset) {
    return true;
  }
  return fail("LibRaw does not select the file's first raw image");
}

bool DngFile::listBlocks() {
  const int rows = isTiled() ? tiling().height : mImage->rows_per_strip;
  const int blockWidth = isTiled() ? tiling().width : width();
  const int blockHeight = !isTiled() && (rows < 1 || rows > height()) ? height() : rows;
  if (!inRange("TileWidth", blockWidth, 1, kLargestSide)) return false;
  if (!inRange("TileLength", blockHeight, 1, kLargestSide)) return false;
  const int needed = ((width() - 1) / blockWidth + 1) * ((height() - 1) / blockHeight + 1);
  const int found = isTiled() ? tiling().count : std::max(mImage->strip_offsets_count, 1);
  if (needed != found) {
    return fail("expected " + std::to_string(needed) + " strips or tiles, found " + std::to_string(found));
  }
  // Each strip or tile has at least one byte, so the file's size limits their number.
  if (needed > libraw_internal_data.internal_data.input->size()) {
    return fail("too short: " + std::to_string(needed) + " strips or tiles do not fit");
  }
  for (int top = 0; top < height(); top += blockHeight) {
    // Tiles at the lower edge have padding; the last strip has none.
    const int blockRows = isTiled() ? blockHeight : std::min(blockHeight, height() - top);
    for (int left = 0; left < width(); left += blockWidth) {
      mBlocks.push_back({blockOffset(mBlocks.size()), left, top, blockWidth, blockRows});
    }
  }
  return true;
}

// Returns the offset of a strip or tile. If there is only one, LibRaw stores its offset; for several strips,
// all offsets; for several tiles, only the position of the offset table.
int64_t DngFile::blockOffset(size_t index) {
  if (isTiled() && tiling().count > 1) {
    const INT64 at = unsigned(mImage->offset);
    libraw_internal_data.internal_data.input->seek(at + INT64(index * sizeof(uint32_t)), SEEK_SET);
    return get4();
  }
  return unsigned(mImage->strip_offsets_count > 1 ? mImage->strip_offsets[index] : mImage->offset);
}

bool DngFile::checkBlocks() {
  const int64_t size = libraw_internal_data.internal_data.input->size();
  const bool isPlain = mImage->comp == kUncompressed;
  for (size_t i = 0; i < mBlocks.size(); ++i) {
    const Block& block = mBlocks[i];
    const int64_t bytes = isPlain ? rowBytes(block.width, mImage->bps) * block.height
                                  : int64_t{block.width} * block.height / kSamplesPerByte;
    const int64_t end = block.offset + bytes;
    if (end > size) {
      return fail("too short: strip or tile " + std::to_string(i) + ": expected " + std::to_string(end) +
                  " bytes, found " + std::to_string(size));
    }
  }
  return true;
}

int DngFile::bits() const {
  const unsigned white = mImage->dng_levels.dng_whitelevel[0];
  if (white < 1 || white > 0xFFFF) return mImage->bps;
  int bits = 0;
  while (white >> bits != 0) ++bits;
  return bits;
}

const uint16_t* DngFile::decode() {
  mDecoder = std::exchange(load_raw, static_cast<void (LibRaw::*)()>(&DngFile::decodeBlocks));
  const int status = unpack();
  if (mProblem.empty() && (status != LIBRAW_SUCCESS || imgdata.rawdata.raw_image == nullptr)) {
    fail(std::string("damaged: ") + strerror(status));
  }
  return mProblem.empty() ? imgdata.rawdata.raw_image : nullptr;
}

// Called by unpack() after it has allocated the memory. LibRaw's own loop treats strips as one piece and
// can't decode uncompressed tiles. Therefore this function passes LibRaw's decoder one strip or tile at a
// time, as if it were the whole image.
void DngFile::decodeBlocks() {
  uint16_t* const image = imgdata.rawdata.raw_image;
  if (image == nullptr) return;
  const libraw_image_sizes_t sizes = imgdata.sizes;
  auto& unpacker = libraw_internal_data.unpacker_data;
  const auto tileWidth = std::exchange(unpacker.tile_width, INT_MAX);
  const auto tileLength = std::exchange(unpacker.tile_length, INT_MAX);
  bool isWhole = true;
  for (size_t i = 0; i < mBlocks.size() && isWhole; ++i) {
    const Block& block = mBlocks[i];
    isWhole = decodeBlock(block, i);
    const int copied = std::min(block.width, width() - block.left);
    for (int y = 0; y < std::min(block.height, height() - block.top) && isWhole; ++y) {
      std::copy_n(mBlock.data() + ptrdiff_t{y} * block.width, copied,
                  image + ptrdiff_t{block.top + y} * width() + block.left);
    }
  }
  imgdata.rawdata.raw_image = image;
  imgdata.sizes = sizes;
  unpacker.tile_width = tileWidth;
  unpacker.tile_length = tileLength;
}

// Some damage makes a decoder stop without an error. Therefore this function decodes into memory
// filled with a mark. If any sample equals the mark, it decodes again over a different mark. A sample that
// equals the mark both times was not written by the decoder.
bool DngFile::decodeBlock(const Block& block, size_t index) {
  decodeOver(block, kFirstMark);
  std::vector<size_t> marked;
  for (size_t i = 0; i < mBlock.size(); ++i) {
    if (mBlock[i] == kFirstMark) marked.push_back(i);
  }
  if (!marked.empty()) {
    const std::vector<uint16_t> first = mBlock;
    decodeOver(block, kSecondMark);
    const auto left =
        std::count_if(marked.begin(), marked.end(), [this](size_t i) { return mBlock[i] == kSecondMark; });
    if (left > 0) {
      return fail("damaged: strip or tile " + std::to_string(index) + " lacks " + std::to_string(left) +
                  " of " + std::to_string(mBlock.size()) + " samples");
    }
  }
  return error_count() == 0 || fail("damaged: strip or tile " + std::to_string(index) + " can't be decoded");
}

void DngFile::decodeOver(const Block& block, uint16_t mark) {
  mBlock.assign(size_t(block.width) * size_t(block.height), mark);
  imgdata.rawdata.raw_image = mBlock.data();
  imgdata.sizes.raw_width = ushort(block.width);
  imgdata.sizes.raw_height = ushort(block.height);
  imgdata.sizes.raw_pitch = unsigned(block.width) * sizeof(mark);
  libraw_internal_data.internal_data.input->seek(block.offset, SEEK_SET);
  (this->*mDecoder)();
}

}  // namespace orlu::host
