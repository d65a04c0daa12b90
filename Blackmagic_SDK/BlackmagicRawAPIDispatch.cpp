#include "BlackmagicRawAPIDispatch.h"

#include <dlfcn.h>
#include <libgen.h>
#include <limits.h>
#include <pthread.h>
#include <unistd.h>

#include <atomic>
#include <cstdlib>
#include <string>

// The plug-in shows these names to the process; everything else it keeps hidden.
#define TW_DISPATCH_EXPORT __attribute__((visibility("default")))

namespace {

// The one lock of the load. A plain pthread mutex, statically initialised, so
// that it exists before any code of the plug-in runs and needs no constructor
// that could come after a first call from another static initialiser.
class BmdMutex {
public:
    void lock() { pthread_mutex_lock(&m_mutex); }
    void unlock() { pthread_mutex_unlock(&m_mutex); }
    pthread_mutex_t m_mutex = PTHREAD_MUTEX_INITIALIZER;
};

class BmdLock {
public:
    explicit BmdLock(BmdMutex& mutex) : m_mutex(mutex) { m_mutex.lock(); }
    ~BmdLock() { m_mutex.unlock(); }
    BmdLock(const BmdLock&) = delete;
    BmdLock& operator=(const BmdLock&) = delete;

private:
    BmdMutex& m_mutex;
};

BmdMutex gBlackmagicRawMutex;

// The library stays loaded for the life of the process: its handle is never closed.
void* gBundleRef = nullptr;

// Set last, once the nine others are in place: the forwarders read it without
// the lock, and what they then read through was written before it.
std::atomic<CreateBlackmagicRawFactoryInstanceFunc> gCreateBlackmagicRawFactoryInstance{nullptr};
VariantInitFunc gVariantInit = nullptr;
VariantClearFunc gVariantClear = nullptr;
SafeArrayCreateFunc gSafeArrayCreate = nullptr;
SafeArrayGetVartypeFunc gSafeArrayGetVartype = nullptr;
SafeArrayGetLBoundFunc gSafeArrayGetLBound = nullptr;
SafeArrayGetUBoundFunc gSafeArrayGetUBound = nullptr;
SafeArrayAccessDataFunc gSafeArrayAccessData = nullptr;
SafeArrayUnaccessDataFunc gSafeArrayUnaccessData = nullptr;
SafeArrayDestroyFunc gSafeArrayDestroy = nullptr;

bool isLoaded() { return gCreateBlackmagicRawFactoryInstance.load(std::memory_order_acquire) != nullptr; }

template <typename Function>
void fetch(Function& out, const char* name) {
    out = reinterpret_cast<Function>(dlsym(gBundleRef, name));
}

// Under gBlackmagicRawMutex. A name the library lacks leaves its pointer null.
void TryLoadBlackmagicRawAPI(const std::string& libraryPath) {
    void* handle = dlopen(libraryPath.c_str(), RTLD_NOW | RTLD_GLOBAL);
    if (handle == nullptr) return;
    gBundleRef = handle;
    CreateBlackmagicRawFactoryInstanceFunc create = nullptr;
    fetch(create, "CreateBlackmagicRawFactoryInstance");
    fetch(gVariantInit, "VariantInit");
    fetch(gVariantClear, "VariantClear");
    fetch(gSafeArrayCreate, "SafeArrayCreate");
    fetch(gSafeArrayGetVartype, "SafeArrayGetVartype");
    fetch(gSafeArrayGetLBound, "SafeArrayGetLBound");
    fetch(gSafeArrayGetUBound, "SafeArrayGetUBound");
    fetch(gSafeArrayAccessData, "SafeArrayAccessData");
    fetch(gSafeArrayUnaccessData, "SafeArrayUnaccessData");
    fetch(gSafeArrayDestroy, "SafeArrayDestroy");
    gCreateBlackmagicRawFactoryInstance.store(create, std::memory_order_release);
}

void loadFromFolder(std::string folder) {
    if (folder.empty() || folder.back() != '/') folder += '/';
    TryLoadBlackmagicRawAPI(folder + TW_BLACKMAGIC_RAW_LIBRARY_NAME);
}

// The folder of the running program, resolved; false when it cannot be had.
bool executableFolder(std::string& folder) {
    char executable[1024];
    const ssize_t length = readlink("/proc/self/exe", executable, sizeof(executable) - 1);
    if (length <= 0) return false;
    executable[length] = '\0';
    char resolved[PATH_MAX];
    if (realpath(executable, resolved) == nullptr) return false;
    folder = dirname(resolved);
    return true;
}

IBlackmagicRawFactory* callFactory() {
    const CreateBlackmagicRawFactoryInstanceFunc create = gCreateBlackmagicRawFactoryInstance.load();
    return create ? create() : nullptr;
}

IBlackmagicRawFactory* fromExeRelativePathLocked(const char* relativePath) {
    if (!isLoaded()) {
        std::string folder;
        if (!executableFolder(folder)) return nullptr;
        if (relativePath != nullptr) folder += std::string("/") + relativePath;
        loadFromFolder(folder);
    }
    return callFactory();
}

IBlackmagicRawFactory* fromBundleLocked() {
    if (!isLoaded()) {
        std::string folder;
        if (executableFolder(folder)) loadFromFolder(folder + "/BlackmagicRawAPI");
    }
    return callFactory();
}

}  // namespace

extern "C" {

TW_DISPATCH_EXPORT IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstanceFromPath(const char* loadPath) {
    BmdLock lock(gBlackmagicRawMutex);
    if (!isLoaded() && loadPath != nullptr) loadFromFolder(loadPath);
    return callFactory();
}

TW_DISPATCH_EXPORT IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstanceFromExeRelativePath(
    const char* relativePath) {
    BmdLock lock(gBlackmagicRawMutex);
    return fromExeRelativePathLocked(relativePath);
}

TW_DISPATCH_EXPORT IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstanceFromBundle(void) {
    BmdLock lock(gBlackmagicRawMutex);
    return fromBundleLocked();
}

TW_DISPATCH_EXPORT IBlackmagicRawFactory* CreateBlackmagicRawFactoryInstance(void) {
    BmdLock lock(gBlackmagicRawMutex);
    if (IBlackmagicRawFactory* factory = fromBundleLocked()) return factory;
    if (!isLoaded()) {
        if (IBlackmagicRawFactory* factory = fromExeRelativePathLocked(nullptr)) return factory;
    }
    return callFactory();
}

// The forwarders read the factory pointer, not their own: a library is either
// loaded or not, and one that lacks a name is not guarded against.

TW_DISPATCH_EXPORT HRESULT VariantInit(Variant* variant) {
    if (!isLoaded()) return E_FAIL;
    return gVariantInit(variant);
}

TW_DISPATCH_EXPORT HRESULT VariantClear(Variant* variant) {
    if (!isLoaded()) return E_FAIL;
    return gVariantClear(variant);
}

TW_DISPATCH_EXPORT SafeArray* SafeArrayCreate(BlackmagicRawVariantType variantType, uint32_t dimensions,
                                              SafeArrayBound* safeArrayBound) {
    if (!isLoaded()) return nullptr;
    return gSafeArrayCreate(variantType, dimensions, safeArrayBound);
}

TW_DISPATCH_EXPORT HRESULT SafeArrayGetVartype(SafeArray* safeArray, BlackmagicRawVariantType* variantType) {
    if (!isLoaded()) return E_FAIL;
    return gSafeArrayGetVartype(safeArray, variantType);
}

TW_DISPATCH_EXPORT HRESULT SafeArrayGetLBound(SafeArray* safeArray, uint32_t dimensions, long* lBound) {
    if (!isLoaded()) return E_FAIL;
    return gSafeArrayGetLBound(safeArray, dimensions, lBound);
}

TW_DISPATCH_EXPORT HRESULT SafeArrayGetUBound(SafeArray* safeArray, uint32_t dimensions, long* uBound) {
    if (!isLoaded()) return E_FAIL;
    return gSafeArrayGetUBound(safeArray, dimensions, uBound);
}

TW_DISPATCH_EXPORT HRESULT SafeArrayAccessData(SafeArray* safeArray, void** data) {
    if (!isLoaded()) return E_FAIL;
    return gSafeArrayAccessData(safeArray, data);
}

TW_DISPATCH_EXPORT HRESULT SafeArrayUnaccessData(SafeArray* safeArray) {
    if (!isLoaded()) return E_FAIL;
    return gSafeArrayUnaccessData(safeArray);
}

TW_DISPATCH_EXPORT HRESULT SafeArrayDestroy(SafeArray* safeArray) {
    if (!isLoaded()) return E_FAIL;
    return gSafeArrayDestroy(safeArray);
}

}  // extern "C"
