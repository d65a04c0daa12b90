#pragma once
// Everything of the MediaCore host interface in one include.

#include "MediaCoreCallbacks.h"
#include "MediaCoreImporter.h"
#include "MediaCorePixelFormats.h"
#include "MediaCoreSuites.h"
#include "MediaCoreTypes.h"
