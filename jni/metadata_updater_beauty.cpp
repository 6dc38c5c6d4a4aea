// The application's beauty and make-up settings.

#include "metadata_updater_rows.h"

namespace orlu {
namespace {

// What "beauty_extra_params" holds: the switch that removes blemishes, and room.
struct BeautyExtraParams {
  int32_t deblacknevus = 0;
  uint8_t reserved[76] = {};
};
static_assert(sizeof(BeautyExtraParams) == 80);

}  // namespace

// clang-format off
void MetadataUpdater::updateBeauty() {
  copy<Ints<22>> ("orlu.control.beautyNewParams",    kParameter, "beauty_new_params");
  copy<Ints<10>> ("orlu.control.makeupParams",       kParameter, "makeup_params");
  copy<Ints<8>>  ("orlu.control.makeup.type",        kParameter, "heavy_makeup_type");
  copy<Ints<8>>  ("orlu.control.makeup.value",       kParameter, "heavy_makeup_value");
  copy<int32_t>  ("orlu.control.makeup.ismalevalue", kParameter, "is_makeup_use_male_value");
  copy<Chars<80>>(firstCompositionOnly(), "orlu.control.eyelightType", kParameter, "eyelight_type");
  BeautyExtraParams extra;
  // On unless the application says otherwise, deliberately: every other row is zero then.
  if (read(extra.deblacknevus, "orlu.control.beauty_deblacknevus") != 0) extra.deblacknevus = 1;
  write(kParameter, "beauty_extra_params", extra);
  copy<int32_t>  ("orlu.control.isNativeMode",       kParameter, "isNativeBeauty");
}
// clang-format on

}  // namespace orlu
