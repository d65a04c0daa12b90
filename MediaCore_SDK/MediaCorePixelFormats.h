#pragma once
// Pixel formats. A code's first character is its least significant byte, so the
// four bytes in memory spell the code on a little-endian machine. Uncompressed
// formats have a lower-left origin: the first row in memory is the bottom row.
// 16u channels run from 0 to 32768 for white.

#include "MediaCoreTypes.h"

enum PrPixelFormat : csSDK_uint32 {
    PrPixelFormat_Any = 0,
    PrPixelFormat_BGRA_4444_8u = 0x61726762,  // 'bgra'
    PrPixelFormat_BGRA_4444_16u = 0x61726742,  // 'Bgra'
    PrPixelFormat_BGRA_4444_32f = 0x61724742,  // 'BGra'
    PrPixelFormat_BGRX_4444_8u = 0x78726762,  // 'bgrx'
    PrPixelFormat_BGRX_4444_16u = 0x78726742,  // 'Bgrx'
    PrPixelFormat_BGRX_4444_32f = 0x78724742,  // 'BGrx'
    PrPixelFormat_BGRP_4444_8u = 0x70726762,  // 'bgrp'
    PrPixelFormat_BGRP_4444_16u = 0x70726742,  // 'Bgrp'
    PrPixelFormat_BGRP_4444_32f = 0x70724742,  // 'BGrp'
    PrPixelFormat_ARGB_4444_8u = 0x62677261,  // 'argb'
    PrPixelFormat_ARGB_4444_16u = 0x62677241,  // 'Argb'
    PrPixelFormat_ARGB_4444_32f = 0x62675241,  // 'ARgb'
    PrPixelFormat_XRGB_4444_8u = 0x62677278,  // 'xrgb'
    PrPixelFormat_XRGB_4444_16u = 0x62677258,  // 'Xrgb'
    PrPixelFormat_XRGB_4444_32f = 0x62675258,  // 'XRgb'
    PrPixelFormat_PRGB_4444_8u = 0x62677270,  // 'prgb'
    PrPixelFormat_PRGB_4444_16u = 0x62677250,  // 'Prgb'
    PrPixelFormat_PRGB_4444_32f = 0x62675250,  // 'PRgb'
    PrPixelFormat_VUYA_4444_8u = 0x61797576,  // 'vuya'
    PrPixelFormat_VUYA_4444_8u_709 = 0x41595556,  // 'VUYA'
    PrPixelFormat_VUYA_4444_16u = 0x61797556,  // 'Vuya'
    PrPixelFormat_VUYA_4444_32f = 0x61795556,  // 'VUya'
    PrPixelFormat_VUYA_4444_32f_709 = 0x61595576,  // 'vUYa'
    PrPixelFormat_VUYX_4444_8u = 0x78797576,  // 'vuyx'
    PrPixelFormat_VUYX_4444_8u_709 = 0x37787576,  // 'vux7'
    PrPixelFormat_VUYX_4444_32f = 0x78795556,  // 'VUyx'
    PrPixelFormat_VUYX_4444_32f_709 = 0x37785556,  // 'VUx7'
    PrPixelFormat_VUYP_4444_8u = 0x70797576,  // 'vuyp'
    PrPixelFormat_VUYP_4444_8u_709 = 0x37707576,  // 'vup7'
    PrPixelFormat_VUYP_4444_32f = 0x70795556,  // 'VUyp'
    PrPixelFormat_VUYP_4444_32f_709 = 0x37705556,  // 'VUp7'
    PrPixelFormat_BGRA_4444_32f_Linear = 0x4C614742,  // 'BGaL'
    PrPixelFormat_BGRP_4444_32f_Linear = 0x4C704742,  // 'BGpL'
    PrPixelFormat_BGRX_4444_32f_Linear = 0x4C784742,  // 'BGxL'
    PrPixelFormat_ARGB_4444_32f_Linear = 0x4C675241,  // 'ARgL'
    PrPixelFormat_PRGB_4444_32f_Linear = 0x4C675250,  // 'PRgL'
    PrPixelFormat_XRGB_4444_32f_Linear = 0x4C675258,  // 'XRgL'
    PrPixelFormat_RGB_444_10u = 0x31424752,  // 'RGB1'
    PrPixelFormat_YUYV_422_8u_601 = 0x32797579,  // 'yuy2'
    PrPixelFormat_YUYV_422_8u_709 = 0x33797579,  // 'yuy3'
    PrPixelFormat_UYVY_422_8u_601 = 0x79767975,  // 'uyvy'
    PrPixelFormat_UYVY_422_8u_709 = 0x37767975,  // 'uyv7'
    PrPixelFormat_V210_422_10u_601 = 0x30313276,  // 'v210'
    PrPixelFormat_V210_422_10u_709 = 0x31313276,  // 'v211'
    PrPixelFormat_UYVY_422_32f_601 = 0x79765955,  // 'UYvy'
    PrPixelFormat_UYVY_422_32f_709 = 0x37765955,  // 'UYv7'
    PrPixelFormat_RGB_444_12u_PQ_709 = 0x37515040,  // '@PQ7'
    PrPixelFormat_RGB_444_12u_PQ_P3 = 0x50515040,  // '@PQP'
    PrPixelFormat_RGB_444_12u_PQ_2020 = 0x32515040,  // '@PQ2'
    PrPixelFormat_RGB_444_10u_HLG = 0x314C4840,  // '@HL1'
    PrPixelFormat_RGB_444_12u_HLG = 0x324C4840,  // '@HL2'
    PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601 = 0x32317679,  // 'yv12'
    PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601 = 0x32697679,  // 'yvi2'
    PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601_FullRange = 0x66317679,  // 'yv1f'
    PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601_FullRange = 0x66697679,  // 'yvif'
    PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709 = 0x37317679,  // 'yv17'
    PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709 = 0x37697679,  // 'yvi7'
    PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709_FullRange = 0x46317679,  // 'yv1F'
    PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709_FullRange = 0x46697679,  // 'yviF'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_601 = 0x32317659,  // 'Yv12'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_601 = 0x32697659,  // 'Yvi2'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_601_FullRange = 0x66317659,  // 'Yv1f'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_601_FullRange = 0x66697659,  // 'Yvif'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_709 = 0x37317659,  // 'Yv17'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_709 = 0x37697659,  // 'Yvi7'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_709_FullRange = 0x46317659,  // 'Yv1F'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_709_FullRange = 0x46697659,  // 'YviF'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601 = 0x3369766E,  // 'nvi3'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601 = 0x3331766E,  // 'nv13'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601_FullRange = 0x3169766E,  // 'nvi1'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601_FullRange = 0x3131766E,  // 'nv11'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709 = 0x3269766E,  // 'nvi2'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709 = 0x3231766E,  // 'nv12'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709_FullRange = 0x3069766E,  // 'nvi0'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709_FullRange = 0x3031766E,  // 'nv10'
    PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601 = 0x3369764E,  // 'Nvi3'
    PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601 = 0x3331764E,  // 'Nv13'
    PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601_FullRange = 0x3169764E,  // 'Nvi1'
    PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601_FullRange = 0x3131764E,  // 'Nv11'
    PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709 = 0x3269764E,  // 'Nvi2'
    PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709 = 0x3231764E,  // 'Nv12'
    PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709_FullRange = 0x3069764E,  // 'Nvi0'
    PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709_FullRange = 0x3031764E,  // 'Nv10'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_709 = 0x30693070,  // 'p0i0'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_709 = 0x30313070,  // 'p010'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_709_FullRange = 0x66693070,  // 'p0if'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_709_FullRange = 0x66313070,  // 'p01f'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020 = 0x30693050,  // 'P0i0'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020 = 0x30313050,  // 'P010'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_FullRange = 0x66693050,  // 'P0if'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_FullRange = 0x66313050,  // 'P01f'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR = 0x30694F50,  // 'POi0'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR = 0x30314F50,  // 'PO10'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_FullRange = 0x66694F50,  // 'POif'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_FullRange = 0x66314F50,  // 'PO1f'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG = 0x306C6850,  // 'Phl0'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG = 0x304C4850,  // 'PHL0'
    PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG_FullRange = 0x666C6850,  // 'Phlf'
    PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG_FullRange = 0x664C4850,  // 'PHLf'
    PrPixelFormat_NTSCDV25 = 0x326E7664,  // 'dvn2'
    PrPixelFormat_PALDV25 = 0x32707664,  // 'dvp2'
    PrPixelFormat_NTSCDV50 = 0x356E7664,  // 'dvn5'
    PrPixelFormat_PALDV50 = 0x35707664,  // 'dvp5'
    PrPixelFormat_NTSCDV100_720p = 0x376E7664,  // 'dvn7'
    PrPixelFormat_PALDV100_720p = 0x37707664,  // 'dvp7'
    PrPixelFormat_NTSCDV100_1080i = 0x316E7664,  // 'dvn1'
    PrPixelFormat_PALDV100_1080i = 0x31707664,  // 'dvp1'
    PrPixelFormat_Raw = 0x77776172,  // 'raww'
    PrPixelFormat_Invalid = 0x66646162,  // 'badf'
};

// Builds a code from its four characters, first character in the lowest byte.
constexpr csSDK_uint32 MakePrPixelFormatCode(char c0, char c1, char c2, char c3) {
    return static_cast<csSDK_uint32>(static_cast<unsigned char>(c0)) |
           (static_cast<csSDK_uint32>(static_cast<unsigned char>(c1)) << 8) |
           (static_cast<csSDK_uint32>(static_cast<unsigned char>(c2)) << 16) |
           (static_cast<csSDK_uint32>(static_cast<unsigned char>(c3)) << 24);
}

static_assert(sizeof(PrPixelFormat) == 4, "PrPixelFormat");
// Every code against its four characters.
static_assert(PrPixelFormat_BGRA_4444_8u == MakePrPixelFormatCode('b', 'g', 'r', 'a'), "PrPixelFormat_BGRA_4444_8u");
static_assert(PrPixelFormat_BGRA_4444_16u == MakePrPixelFormatCode('B', 'g', 'r', 'a'), "PrPixelFormat_BGRA_4444_16u");
static_assert(PrPixelFormat_BGRA_4444_32f == MakePrPixelFormatCode('B', 'G', 'r', 'a'), "PrPixelFormat_BGRA_4444_32f");
static_assert(PrPixelFormat_BGRX_4444_8u == MakePrPixelFormatCode('b', 'g', 'r', 'x'), "PrPixelFormat_BGRX_4444_8u");
static_assert(PrPixelFormat_BGRX_4444_16u == MakePrPixelFormatCode('B', 'g', 'r', 'x'), "PrPixelFormat_BGRX_4444_16u");
static_assert(PrPixelFormat_BGRX_4444_32f == MakePrPixelFormatCode('B', 'G', 'r', 'x'), "PrPixelFormat_BGRX_4444_32f");
static_assert(PrPixelFormat_BGRP_4444_8u == MakePrPixelFormatCode('b', 'g', 'r', 'p'), "PrPixelFormat_BGRP_4444_8u");
static_assert(PrPixelFormat_BGRP_4444_16u == MakePrPixelFormatCode('B', 'g', 'r', 'p'), "PrPixelFormat_BGRP_4444_16u");
static_assert(PrPixelFormat_BGRP_4444_32f == MakePrPixelFormatCode('B', 'G', 'r', 'p'), "PrPixelFormat_BGRP_4444_32f");
static_assert(PrPixelFormat_ARGB_4444_8u == MakePrPixelFormatCode('a', 'r', 'g', 'b'), "PrPixelFormat_ARGB_4444_8u");
static_assert(PrPixelFormat_ARGB_4444_16u == MakePrPixelFormatCode('A', 'r', 'g', 'b'), "PrPixelFormat_ARGB_4444_16u");
static_assert(PrPixelFormat_ARGB_4444_32f == MakePrPixelFormatCode('A', 'R', 'g', 'b'), "PrPixelFormat_ARGB_4444_32f");
static_assert(PrPixelFormat_XRGB_4444_8u == MakePrPixelFormatCode('x', 'r', 'g', 'b'), "PrPixelFormat_XRGB_4444_8u");
static_assert(PrPixelFormat_XRGB_4444_16u == MakePrPixelFormatCode('X', 'r', 'g', 'b'), "PrPixelFormat_XRGB_4444_16u");
static_assert(PrPixelFormat_XRGB_4444_32f == MakePrPixelFormatCode('X', 'R', 'g', 'b'), "PrPixelFormat_XRGB_4444_32f");
static_assert(PrPixelFormat_PRGB_4444_8u == MakePrPixelFormatCode('p', 'r', 'g', 'b'), "PrPixelFormat_PRGB_4444_8u");
static_assert(PrPixelFormat_PRGB_4444_16u == MakePrPixelFormatCode('P', 'r', 'g', 'b'), "PrPixelFormat_PRGB_4444_16u");
static_assert(PrPixelFormat_PRGB_4444_32f == MakePrPixelFormatCode('P', 'R', 'g', 'b'), "PrPixelFormat_PRGB_4444_32f");
static_assert(PrPixelFormat_VUYA_4444_8u == MakePrPixelFormatCode('v', 'u', 'y', 'a'), "PrPixelFormat_VUYA_4444_8u");
static_assert(PrPixelFormat_VUYA_4444_8u_709 == MakePrPixelFormatCode('V', 'U', 'Y', 'A'), "PrPixelFormat_VUYA_4444_8u_709");
static_assert(PrPixelFormat_VUYA_4444_16u == MakePrPixelFormatCode('V', 'u', 'y', 'a'), "PrPixelFormat_VUYA_4444_16u");
static_assert(PrPixelFormat_VUYA_4444_32f == MakePrPixelFormatCode('V', 'U', 'y', 'a'), "PrPixelFormat_VUYA_4444_32f");
static_assert(PrPixelFormat_VUYA_4444_32f_709 == MakePrPixelFormatCode('v', 'U', 'Y', 'a'), "PrPixelFormat_VUYA_4444_32f_709");
static_assert(PrPixelFormat_VUYX_4444_8u == MakePrPixelFormatCode('v', 'u', 'y', 'x'), "PrPixelFormat_VUYX_4444_8u");
static_assert(PrPixelFormat_VUYX_4444_8u_709 == MakePrPixelFormatCode('v', 'u', 'x', '7'), "PrPixelFormat_VUYX_4444_8u_709");
static_assert(PrPixelFormat_VUYX_4444_32f == MakePrPixelFormatCode('V', 'U', 'y', 'x'), "PrPixelFormat_VUYX_4444_32f");
static_assert(PrPixelFormat_VUYX_4444_32f_709 == MakePrPixelFormatCode('V', 'U', 'x', '7'), "PrPixelFormat_VUYX_4444_32f_709");
static_assert(PrPixelFormat_VUYP_4444_8u == MakePrPixelFormatCode('v', 'u', 'y', 'p'), "PrPixelFormat_VUYP_4444_8u");
static_assert(PrPixelFormat_VUYP_4444_8u_709 == MakePrPixelFormatCode('v', 'u', 'p', '7'), "PrPixelFormat_VUYP_4444_8u_709");
static_assert(PrPixelFormat_VUYP_4444_32f == MakePrPixelFormatCode('V', 'U', 'y', 'p'), "PrPixelFormat_VUYP_4444_32f");
static_assert(PrPixelFormat_VUYP_4444_32f_709 == MakePrPixelFormatCode('V', 'U', 'p', '7'), "PrPixelFormat_VUYP_4444_32f_709");
static_assert(PrPixelFormat_BGRA_4444_32f_Linear == MakePrPixelFormatCode('B', 'G', 'a', 'L'), "PrPixelFormat_BGRA_4444_32f_Linear");
static_assert(PrPixelFormat_BGRP_4444_32f_Linear == MakePrPixelFormatCode('B', 'G', 'p', 'L'), "PrPixelFormat_BGRP_4444_32f_Linear");
static_assert(PrPixelFormat_BGRX_4444_32f_Linear == MakePrPixelFormatCode('B', 'G', 'x', 'L'), "PrPixelFormat_BGRX_4444_32f_Linear");
static_assert(PrPixelFormat_ARGB_4444_32f_Linear == MakePrPixelFormatCode('A', 'R', 'g', 'L'), "PrPixelFormat_ARGB_4444_32f_Linear");
static_assert(PrPixelFormat_PRGB_4444_32f_Linear == MakePrPixelFormatCode('P', 'R', 'g', 'L'), "PrPixelFormat_PRGB_4444_32f_Linear");
static_assert(PrPixelFormat_XRGB_4444_32f_Linear == MakePrPixelFormatCode('X', 'R', 'g', 'L'), "PrPixelFormat_XRGB_4444_32f_Linear");
static_assert(PrPixelFormat_RGB_444_10u == MakePrPixelFormatCode('R', 'G', 'B', '1'), "PrPixelFormat_RGB_444_10u");
static_assert(PrPixelFormat_YUYV_422_8u_601 == MakePrPixelFormatCode('y', 'u', 'y', '2'), "PrPixelFormat_YUYV_422_8u_601");
static_assert(PrPixelFormat_YUYV_422_8u_709 == MakePrPixelFormatCode('y', 'u', 'y', '3'), "PrPixelFormat_YUYV_422_8u_709");
static_assert(PrPixelFormat_UYVY_422_8u_601 == MakePrPixelFormatCode('u', 'y', 'v', 'y'), "PrPixelFormat_UYVY_422_8u_601");
static_assert(PrPixelFormat_UYVY_422_8u_709 == MakePrPixelFormatCode('u', 'y', 'v', '7'), "PrPixelFormat_UYVY_422_8u_709");
static_assert(PrPixelFormat_V210_422_10u_601 == MakePrPixelFormatCode('v', '2', '1', '0'), "PrPixelFormat_V210_422_10u_601");
static_assert(PrPixelFormat_V210_422_10u_709 == MakePrPixelFormatCode('v', '2', '1', '1'), "PrPixelFormat_V210_422_10u_709");
static_assert(PrPixelFormat_UYVY_422_32f_601 == MakePrPixelFormatCode('U', 'Y', 'v', 'y'), "PrPixelFormat_UYVY_422_32f_601");
static_assert(PrPixelFormat_UYVY_422_32f_709 == MakePrPixelFormatCode('U', 'Y', 'v', '7'), "PrPixelFormat_UYVY_422_32f_709");
static_assert(PrPixelFormat_RGB_444_12u_PQ_709 == MakePrPixelFormatCode('@', 'P', 'Q', '7'), "PrPixelFormat_RGB_444_12u_PQ_709");
static_assert(PrPixelFormat_RGB_444_12u_PQ_P3 == MakePrPixelFormatCode('@', 'P', 'Q', 'P'), "PrPixelFormat_RGB_444_12u_PQ_P3");
static_assert(PrPixelFormat_RGB_444_12u_PQ_2020 == MakePrPixelFormatCode('@', 'P', 'Q', '2'), "PrPixelFormat_RGB_444_12u_PQ_2020");
static_assert(PrPixelFormat_RGB_444_10u_HLG == MakePrPixelFormatCode('@', 'H', 'L', '1'), "PrPixelFormat_RGB_444_10u_HLG");
static_assert(PrPixelFormat_RGB_444_12u_HLG == MakePrPixelFormatCode('@', 'H', 'L', '2'), "PrPixelFormat_RGB_444_12u_HLG");
static_assert(PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601 == MakePrPixelFormatCode('y', 'v', '1', '2'), "PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601");
static_assert(PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601 == MakePrPixelFormatCode('y', 'v', 'i', '2'), "PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601");
static_assert(PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601_FullRange == MakePrPixelFormatCode('y', 'v', '1', 'f'), "PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_601_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601_FullRange == MakePrPixelFormatCode('y', 'v', 'i', 'f'), "PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_601_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709 == MakePrPixelFormatCode('y', 'v', '1', '7'), "PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709");
static_assert(PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709 == MakePrPixelFormatCode('y', 'v', 'i', '7'), "PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709");
static_assert(PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709_FullRange == MakePrPixelFormatCode('y', 'v', '1', 'F'), "PrPixelFormat_YUV_420_MPEG2_FRAME_PICTURE_PLANAR_8u_709_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709_FullRange == MakePrPixelFormatCode('y', 'v', 'i', 'F'), "PrPixelFormat_YUV_420_MPEG2_FIELD_PICTURE_PLANAR_8u_709_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_601 == MakePrPixelFormatCode('Y', 'v', '1', '2'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_601");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_601 == MakePrPixelFormatCode('Y', 'v', 'i', '2'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_601");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_601_FullRange == MakePrPixelFormatCode('Y', 'v', '1', 'f'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_601_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_601_FullRange == MakePrPixelFormatCode('Y', 'v', 'i', 'f'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_601_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_709 == MakePrPixelFormatCode('Y', 'v', '1', '7'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_709");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_709 == MakePrPixelFormatCode('Y', 'v', 'i', '7'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_709");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_709_FullRange == MakePrPixelFormatCode('Y', 'v', '1', 'F'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_PLANAR_8u_709_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_709_FullRange == MakePrPixelFormatCode('Y', 'v', 'i', 'F'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_PLANAR_8u_709_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601 == MakePrPixelFormatCode('n', 'v', 'i', '3'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601 == MakePrPixelFormatCode('n', 'v', '1', '3'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601_FullRange == MakePrPixelFormatCode('n', 'v', 'i', '1'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601_FullRange == MakePrPixelFormatCode('n', 'v', '1', '1'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709 == MakePrPixelFormatCode('n', 'v', 'i', '2'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709 == MakePrPixelFormatCode('n', 'v', '1', '2'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709_FullRange == MakePrPixelFormatCode('n', 'v', 'i', '0'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709_FullRange == MakePrPixelFormatCode('n', 'v', '1', '0'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709_FullRange");
static_assert(PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601 == MakePrPixelFormatCode('N', 'v', 'i', '3'), "PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601");
static_assert(PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601 == MakePrPixelFormatCode('N', 'v', '1', '3'), "PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601");
static_assert(PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601_FullRange == MakePrPixelFormatCode('N', 'v', 'i', '1'), "PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_601_FullRange");
static_assert(PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601_FullRange == MakePrPixelFormatCode('N', 'v', '1', '1'), "PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_601_FullRange");
static_assert(PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709 == MakePrPixelFormatCode('N', 'v', 'i', '2'), "PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709");
static_assert(PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709 == MakePrPixelFormatCode('N', 'v', '1', '2'), "PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709");
static_assert(PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709_FullRange == MakePrPixelFormatCode('N', 'v', 'i', '0'), "PrPixelFormat_YVU_420_MPEG4_FIELD_PICTURE_BIPLANAR_8u_709_FullRange");
static_assert(PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709_FullRange == MakePrPixelFormatCode('N', 'v', '1', '0'), "PrPixelFormat_YVU_420_MPEG4_FRAME_PICTURE_BIPLANAR_8u_709_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_709 == MakePrPixelFormatCode('p', '0', 'i', '0'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_709");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_709 == MakePrPixelFormatCode('p', '0', '1', '0'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_709");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_709_FullRange == MakePrPixelFormatCode('p', '0', 'i', 'f'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_709_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_709_FullRange == MakePrPixelFormatCode('p', '0', '1', 'f'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_709_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020 == MakePrPixelFormatCode('P', '0', 'i', '0'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020 == MakePrPixelFormatCode('P', '0', '1', '0'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_FullRange == MakePrPixelFormatCode('P', '0', 'i', 'f'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_FullRange == MakePrPixelFormatCode('P', '0', '1', 'f'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR == MakePrPixelFormatCode('P', 'O', 'i', '0'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR == MakePrPixelFormatCode('P', 'O', '1', '0'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_FullRange == MakePrPixelFormatCode('P', 'O', 'i', 'f'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_FullRange == MakePrPixelFormatCode('P', 'O', '1', 'f'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG == MakePrPixelFormatCode('P', 'h', 'l', '0'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG == MakePrPixelFormatCode('P', 'H', 'L', '0'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG");
static_assert(PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG_FullRange == MakePrPixelFormatCode('P', 'h', 'l', 'f'), "PrPixelFormat_YUV_420_MPEG4_FIELD_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG_FullRange");
static_assert(PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG_FullRange == MakePrPixelFormatCode('P', 'H', 'L', 'f'), "PrPixelFormat_YUV_420_MPEG4_FRAME_PICTURE_BIPLANAR_10u_as16u_2020_HDR_HLG_FullRange");
static_assert(PrPixelFormat_NTSCDV25 == MakePrPixelFormatCode('d', 'v', 'n', '2'), "PrPixelFormat_NTSCDV25");
static_assert(PrPixelFormat_PALDV25 == MakePrPixelFormatCode('d', 'v', 'p', '2'), "PrPixelFormat_PALDV25");
static_assert(PrPixelFormat_NTSCDV50 == MakePrPixelFormatCode('d', 'v', 'n', '5'), "PrPixelFormat_NTSCDV50");
static_assert(PrPixelFormat_PALDV50 == MakePrPixelFormatCode('d', 'v', 'p', '5'), "PrPixelFormat_PALDV50");
static_assert(PrPixelFormat_NTSCDV100_720p == MakePrPixelFormatCode('d', 'v', 'n', '7'), "PrPixelFormat_NTSCDV100_720p");
static_assert(PrPixelFormat_PALDV100_720p == MakePrPixelFormatCode('d', 'v', 'p', '7'), "PrPixelFormat_PALDV100_720p");
static_assert(PrPixelFormat_NTSCDV100_1080i == MakePrPixelFormatCode('d', 'v', 'n', '1'), "PrPixelFormat_NTSCDV100_1080i");
static_assert(PrPixelFormat_PALDV100_1080i == MakePrPixelFormatCode('d', 'v', 'p', '1'), "PrPixelFormat_PALDV100_1080i");
static_assert(PrPixelFormat_Raw == MakePrPixelFormatCode('r', 'a', 'w', 'w'), "PrPixelFormat_Raw");
static_assert(PrPixelFormat_Invalid == MakePrPixelFormatCode('b', 'a', 'd', 'f'), "PrPixelFormat_Invalid");
static_assert(sizeof(PrPixelFormat) == 4, "PrPixelFormat is 4 bytes");
