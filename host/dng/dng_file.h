// The sensor's samples in a DNG file, decoded by LibRaw.
#pragma once

#include <libraw/libraw.h>

#include <cstddef>
#include <cstdint>
#include <string>
#include <vector>

namespace orlu::host {

// Takes files without compression and with lossless JPEG. The files are anybody's: every size is bounded by
// the file's own before memory is taken, and a strip or tile that does not fill its place is an error.
class DngFile : private LibRaw {
public:
  // Reads no more than the header. What is wrong with the file is in problem(), then nothing else is valid.
  explicit DngFile(const char* path);

  // What is wrong with the file, in words; empty while nothing is known to be.
  const std::string& problem() const { return mProblem; }

  // Samples in a row and rows, of the whole sensor: nothing is cropped.
  int width() const { return mImage->t_width; }
  int height() const { return mImage->t_height; }

  // How many bits the white level takes; those of a sample in the file where it names no level.
  int bits() const;

  // Decodes all samples, row by row without padding, as they are behind the file's own linearisation table.
  // They live as long as this object. Null when there is a problem().
  const uint16_t* decode();

private:
  struct Block {
    int64_t offset;                // in the file, in bytes
    int left, top, width, height;  // in samples
  };

  // What an image's header says of its tiles; LibRaw forgets it where there is one.
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
