// The sensor's samples in a DNG file, decoded by LibRaw.
#pragma once

#include <libraw/libraw.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orlu::host {

// Reads uncompressed samples and lossless JPEG. Files are untrusted: the image's size is checked against the
// file's size before memory is allocated, and a strip or tile that does not fill its area is an error.
class DngFile : private LibRaw {
public:
  // Reads only the header. If problem() is not empty afterwards, no other function may be called.
  explicit DngFile(const char* path);

  // Describes what is wrong with the file; empty if no problem is known.
  const std::string& problem() const { return mProblem; }

  // Width and height of the whole sensor in samples, uncropped.
  int width() const { return mImage->t_width; }
  int height() const { return mImage->t_height; }

  // Number of bits that the white level requires; without a valid white level, the bits per stored sample.
  int bits() const;

  // Decodes all samples, row by row without padding, and applies the file's linearisation table. The samples
  // are valid until this object is destroyed. Returns null on failure; problem() then describes it.
  const uint16_t* decode();

private:
  struct Block {
    int64_t offset;                // in the file, in bytes
    int left, top, width, height;  // in samples
  };

  // The tile fields of an image's header. LibRaw does not store them for an image of a single tile.
  struct Tiling {
    int width = 0, height = 0, count = 0;
  };

  static void noteTag(void* self, int tag, int type, int length, unsigned order, void* file, INT64 base);
  bool fail(const std::string& problem);
  bool inRange(const char* name, int64_t value, int least, int most);
  bool findImage(int openStatus);
  bool checkImage();
  bool listBlocks();
  bool checkBlocks();
  void decodeBlocks();
  bool decodeBlock(const Block& block, size_t index);
  void decodeOver(const Block& block, uint16_t mark);
  const Tiling& tiling() const { return mTilings[mImage - tiff_ifd]; }
  bool isTiled() const { return tiling().count > 0; }
  int64_t blockOffset(size_t index);

  std::string mProblem;
  const tiff_ifd_t* mImage = nullptr;
  void (LibRaw::*mDecoder)() = nullptr;
  Tiling mTilings[LIBRAW_IFD_MAXCOUNT];
  std::vector<Block> mBlocks;
  std::vector<uint16_t> mBlock;
};

}  // namespace orlu::host
