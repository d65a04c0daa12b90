// The library's exported C functions: the factory, the Variant and SafeArray
// helpers, and the live-object report for tests.

#include "Library/RefDecoderDebug.h"
#include "Library/RefFactory.h"
#include "Library/RefJob.h"
#include "Library/RefLibObject.h"
#include "Library/RefLibraryConfig.h"
#include "Library/RefVariant.h"

#include <algorithm>
#include <cstdio>
#include <cstring>
#include <new>
#include <type_traits>

#define TW_REF_EXPORT extern "C" __attribute__((visibility("default")))

// Each call reads the codec-level facts afresh, so a test can shape them per
// factory. A facts file that does not parse gives no factory at all: a test
// must not run on facts other than the ones it wrote.
TW_REF_EXPORT IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstance(void)
{
    try {
        auto config = std::make_shared<twref::RefLibraryConfig>();
        std::string error;
        if (!twref::RefLibraryConfig::load(*config, error)) {
            std::fprintf(stderr, "libBlackmagicRawAPI: %s\n", error.c_str());
            return nullptr;
        }
        return new twref::RefFactory(std::move(config));
    } catch (const std::exception&) {
        return nullptr;
    }
}

TW_REF_EXPORT HRESULT VariantInit(Variant* variant)
{
    return twref::refVariantInit(variant);
}

TW_REF_EXPORT HRESULT VariantClear(Variant* variant)
{
    return twref::refVariantClear(variant);
}

TW_REF_EXPORT SafeArray* SafeArrayCreate(BlackmagicRawVariantType variantType, uint32_t dimensions,
                                         SafeArrayBound* safeArrayBound)
{
    return twref::refSafeArrayCreate(variantType, dimensions, safeArrayBound);
}

TW_REF_EXPORT HRESULT SafeArrayGetVartype(SafeArray* safeArray, BlackmagicRawVariantType* variantType)
{
    return twref::refSafeArrayGetVartype(safeArray, variantType);
}

TW_REF_EXPORT HRESULT SafeArrayGetLBound(SafeArray* safeArray, uint32_t dimensions, long* lBound)
{
    return twref::refSafeArrayGetLBound(safeArray, dimensions, lBound);
}

TW_REF_EXPORT HRESULT SafeArrayGetUBound(SafeArray* safeArray, uint32_t dimensions, long* uBound)
{
    return twref::refSafeArrayGetUBound(safeArray, dimensions, uBound);
}

TW_REF_EXPORT HRESULT SafeArrayAccessData(SafeArray* safeArray, void** data)
{
    return twref::refSafeArrayAccessData(safeArray, data);
}

TW_REF_EXPORT HRESULT SafeArrayUnaccessData(SafeArray* safeArray)
{
    return twref::refSafeArrayUnaccessData(safeArray);
}

TW_REF_EXPORT HRESULT SafeArrayDestroy(SafeArray* safeArray)
{
    return twref::refSafeArrayDestroy(safeArray);
}

// Debug entry for tests: the number of library objects alive now (COM objects,
// Variant strings, SafeArrays, resources), and, when report is given, their
// list as text ("<kind> <address> refs=<n>" per line), cut to reportSize
// bytes including the terminating zero.
TW_REF_EXPORT uint64_t twRefDecoderLiveObjects(char* report, uint32_t reportSize)
{
    try {
        if (report && reportSize > 0) {
            const std::string text = twref::refLiveObjectReport();
            const size_t length = std::min<size_t>(text.size(), reportSize - 1);
            std::memcpy(report, text.data(), length);
            report[length] = '\0';
        }
        return twref::refLiveObjectCount();
    } catch (const std::exception&) {
        return 0;
    }
}

static_assert(std::is_same<decltype(&twRefDecoderLiveObjects), TwRefDecoderLiveObjectsFunc>::value,
              "the report's published signature");

// Debug entry for tests: a function every job calls right before its stage.
TW_REF_EXPORT void twRefDecoderSetStageHook(TwRefDecoderStageHook hook, void* context)
{
    twref::RefJob::setStageHook(hook, context);
}

static_assert(std::is_same<decltype(&twRefDecoderSetStageHook), TwRefDecoderSetStageHookFunc>::value,
              "the stage hook's published signature");
