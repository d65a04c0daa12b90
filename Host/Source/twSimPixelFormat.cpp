#include "twSimPixelFormat.h"

#include "twSimText.h"

namespace {

struct Entry {
    PrPixelFormat format;
    const char* name;
};

const Entry kNames[] = {
    {PrPixelFormat_BGRA_4444_8u, "BGRA_4444_8u"},
    {PrPixelFormat_BGRA_4444_16u, "BGRA_4444_16u"},
    {PrPixelFormat_BGRA_4444_32f, "BGRA_4444_32f"},
    {PrPixelFormat_BGRX_4444_8u, "BGRX_4444_8u"},
    {PrPixelFormat_BGRX_4444_16u, "BGRX_4444_16u"},
    {PrPixelFormat_BGRX_4444_32f, "BGRX_4444_32f"},
    {PrPixelFormat_BGRP_4444_8u, "BGRP_4444_8u"},
    {PrPixelFormat_BGRP_4444_16u, "BGRP_4444_16u"},
    {PrPixelFormat_BGRP_4444_32f, "BGRP_4444_32f"},
    {PrPixelFormat_ARGB_4444_8u, "ARGB_4444_8u"},
    {PrPixelFormat_ARGB_4444_16u, "ARGB_4444_16u"},
    {PrPixelFormat_ARGB_4444_32f, "ARGB_4444_32f"},
    {PrPixelFormat_XRGB_4444_8u, "XRGB_4444_8u"},
    {PrPixelFormat_XRGB_4444_16u, "XRGB_4444_16u"},
    {PrPixelFormat_XRGB_4444_32f, "XRGB_4444_32f"},
    {PrPixelFormat_PRGB_4444_8u, "PRGB_4444_8u"},
    {PrPixelFormat_PRGB_4444_16u, "PRGB_4444_16u"},
    {PrPixelFormat_PRGB_4444_32f, "PRGB_4444_32f"},
    {PrPixelFormat_VUYA_4444_8u, "VUYA_4444_8u"},
    {PrPixelFormat_VUYA_4444_8u_709, "VUYA_4444_8u_709"},
    {PrPixelFormat_VUYA_4444_16u, "VUYA_4444_16u"},
    {PrPixelFormat_VUYA_4444_32f, "VUYA_4444_32f"},
    {PrPixelFormat_VUYA_4444_32f_709, "VUYA_4444_32f_709"},
    {PrPixelFormat_VUYX_4444_8u, "VUYX_4444_8u"},
    {PrPixelFormat_VUYX_4444_8u_709, "VUYX_4444_8u_709"},
    {PrPixelFormat_VUYX_4444_32f, "VUYX_4444_32f"},
    {PrPixelFormat_VUYX_4444_32f_709, "VUYX_4444_32f_709"},
    {PrPixelFormat_VUYP_4444_8u, "VUYP_4444_8u"},
    {PrPixelFormat_VUYP_4444_8u_709, "VUYP_4444_8u_709"},
    {PrPixelFormat_VUYP_4444_32f, "VUYP_4444_32f"},
    {PrPixelFormat_VUYP_4444_32f_709, "VUYP_4444_32f_709"},
    {PrPixelFormat_BGRA_4444_32f_Linear, "BGRA_4444_32f_Linear"},
    {PrPixelFormat_BGRP_4444_32f_Linear, "BGRP_4444_32f_Linear"},
    {PrPixelFormat_BGRX_4444_32f_Linear, "BGRX_4444_32f_Linear"},
    {PrPixelFormat_ARGB_4444_32f_Linear, "ARGB_4444_32f_Linear"},
    {PrPixelFormat_PRGB_4444_32f_Linear, "PRGB_4444_32f_Linear"},
    {PrPixelFormat_XRGB_4444_32f_Linear, "XRGB_4444_32f_Linear"},
    {PrPixelFormat_RGB_444_10u, "RGB_444_10u"},
    {PrPixelFormat_YUYV_422_8u_601, "YUYV_422_8u_601"},
    {PrPixelFormat_YUYV_422_8u_709, "YUYV_422_8u_709"},
    {PrPixelFormat_UYVY_422_8u_601, "UYVY_422_8u_601"},
    {PrPixelFormat_UYVY_422_8u_709, "UYVY_422_8u_709"},
    {PrPixelFormat_V210_422_10u_601, "V210_422_10u_601"},
    {PrPixelFormat_V210_422_10u_709, "V210_422_10u_709"},
    {PrPixelFormat_UYVY_422_32f_601, "UYVY_422_32f_601"},
    {PrPixelFormat_UYVY_422_32f_709, "UYVY_422_32f_709"},
    {PrPixelFormat_RGB_444_12u_PQ_709, "RGB_444_12u_PQ_709"},
    {PrPixelFormat_RGB_444_12u_PQ_P3, "RGB_444_12u_PQ_P3"},
    {PrPixelFormat_RGB_444_12u_PQ_2020, "RGB_444_12u_PQ_2020"},
    {PrPixelFormat_RGB_444_10u_HLG, "RGB_444_10u_HLG"},
    {PrPixelFormat_RGB_444_12u_HLG, "RGB_444_12u_HLG"},
    {PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601, "YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601"},
    {PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601, "YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601"},
    {PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601_FullRange, "YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601_FullRange"},
    {PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601_FullRange, "YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601_FullRange"},
    {PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709, "YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709"},
    {PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709, "YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709"},
    {PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709_FullRange, "YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709_FullRange"},
    {PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709_FullRange, "YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_601, "YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_601"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_601, "YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_601"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_601_FullRange, "YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_601_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_601_FullRange, "YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_601_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_709, "YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_709"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_709, "YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_709"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_709_FullRange, "YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_709_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_709_FullRange, "YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_709_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601_FullRange, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601_FullRange, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709_FullRange, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709_FullRange, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709_FullRange"},
    {PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601, "YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601"},
    {PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601, "YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601"},
    {PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601_FullRange, "YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601_FullRange"},
    {PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601_FullRange, "YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601_FullRange"},
    {PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709, "YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709"},
    {PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709, "YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709"},
    {PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709_FullRange, "YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709_FullRange"},
    {PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709_FullRange, "YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_709, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_709"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_709, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_709"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_709_FullRange, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_709_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_709_FullRange, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_709_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_FullRange, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_FullRange, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_FullRange, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_FullRange, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG"},
    {PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG_FullRange, "YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG_FullRange"},
    {PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG_FullRange, "YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG_FullRange"},
    {PrPixelFormat_NTSCDV25, "NTSCDV25"},
    {PrPixelFormat_PALDV25, "PALDV25"},
    {PrPixelFormat_NTSCDV50, "NTSCDV50"},
    {PrPixelFormat_PALDV50, "PALDV50"},
    {PrPixelFormat_NTSCDV100_720p, "NTSCDV100_720p"},
    {PrPixelFormat_PALDV100_720p, "PALDV100_720p"},
    {PrPixelFormat_NTSCDV100_1080i, "NTSCDV100_1080i"},
    {PrPixelFormat_PALDV100_1080i, "PALDV100_1080i"},
    {PrPixelFormat_Raw, "Raw"},
    {PrPixelFormat_Invalid, "Invalid"},
    {PrPixelFormat_Any, "Any"},
};

}  // namespace

int twSimBytesPerPixel(PrPixelFormat format) {
    switch (format) {
        case PrPixelFormat_BGRA_4444_8u:
        case PrPixelFormat_BGRX_4444_8u:
        case PrPixelFormat_BGRP_4444_8u:
        case PrPixelFormat_ARGB_4444_8u:
        case PrPixelFormat_XRGB_4444_8u:
        case PrPixelFormat_PRGB_4444_8u:
        case PrPixelFormat_VUYA_4444_8u:
        case PrPixelFormat_VUYA_4444_8u_709:
        case PrPixelFormat_VUYX_4444_8u:
        case PrPixelFormat_VUYX_4444_8u_709:
        case PrPixelFormat_VUYP_4444_8u:
        case PrPixelFormat_VUYP_4444_8u_709:
        case PrPixelFormat_RGB_444_10u:
            return 4;
        case PrPixelFormat_BGRA_4444_16u:
        case PrPixelFormat_BGRX_4444_16u:
        case PrPixelFormat_BGRP_4444_16u:
        case PrPixelFormat_ARGB_4444_16u:
        case PrPixelFormat_XRGB_4444_16u:
        case PrPixelFormat_PRGB_4444_16u:
        case PrPixelFormat_VUYA_4444_16u:
        case PrPixelFormat_UYVY_422_32f_601:
        case PrPixelFormat_UYVY_422_32f_709:
            return 8;
        case PrPixelFormat_BGRA_4444_32f:
        case PrPixelFormat_BGRX_4444_32f:
        case PrPixelFormat_BGRP_4444_32f:
        case PrPixelFormat_ARGB_4444_32f:
        case PrPixelFormat_XRGB_4444_32f:
        case PrPixelFormat_PRGB_4444_32f:
        case PrPixelFormat_VUYA_4444_32f:
        case PrPixelFormat_VUYA_4444_32f_709:
        case PrPixelFormat_VUYX_4444_32f:
        case PrPixelFormat_VUYX_4444_32f_709:
        case PrPixelFormat_VUYP_4444_32f:
        case PrPixelFormat_VUYP_4444_32f_709:
        case PrPixelFormat_BGRA_4444_32f_Linear:
        case PrPixelFormat_BGRP_4444_32f_Linear:
        case PrPixelFormat_BGRX_4444_32f_Linear:
        case PrPixelFormat_ARGB_4444_32f_Linear:
        case PrPixelFormat_PRGB_4444_32f_Linear:
        case PrPixelFormat_XRGB_4444_32f_Linear:
            return 16;
        case PrPixelFormat_YUYV_422_8u_601:
        case PrPixelFormat_YUYV_422_8u_709:
        case PrPixelFormat_UYVY_422_8u_601:
        case PrPixelFormat_UYVY_422_8u_709:
            return 2;
        default:
            return 0;
    }
}

std::string twSimPixelFormatName(PrPixelFormat format) {
    const std::string chars = "'" + twSimText::FourCCLowFirst(format) + "'";
    for (const Entry& e : kNames)
        if (e.format == format) return std::string(e.name) + " " + chars;
    if (format == PrPixelFormat_Any) return "Any";
    return "unknown " + chars;
}
