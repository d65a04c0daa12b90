#!/usr/bin/env bash
# The main job: installs what is missing, builds, and shows the product at work.
# A demo clip made by the reference decoder's clip writer is imported by the
# plug-in inside the command-line host, which prints what a host learns of it;
# its audio is read into a WAV file, a handful of its frames are rendered to
# images with a contact sheet, and a second of it is played back the way a host
# plays. Everything the plug-in writes (log, options, cache) goes to
# build/demo/, never to the real home folder.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/setup-deps.sh
scripts/build.sh build -DCMAKE_BUILD_TYPE=RelWithDebInfo
echo "Build ready in build/."

demo="$PWD/build/demo"
stage="$PWD/build/stage/MediaCore/Qervane Tarnwick"
rm -rf "$demo"
mkdir -p "$demo/home"

# The plug-in checks its install at start: the staged product, seen where hosts
# load plug-ins from, under a system root of the demo's own. Bundles the build
# does not make yet get an empty stand-in, so that the check finds the whole set.
product="$demo/root/Library/Application Support/Adobe/Common/Plug-ins/7.0/MediaCore/Qervane Tarnwick"
mkdir -p "$product"
for entry in "$stage"/*; do
  ln -s "$entry" "$product/$(basename "$entry")"
done
for part in Tarnwick_Source_Settings.plugin Tarnwick_Layer_Settings.plugin; do
  if [ ! -e "$product/$part" ]; then
    mkdir -p "$product/$part"
    echo "(not built yet: an empty $part stands in for the install check)"
  fi
done

clip="$demo/demo.braw"
build/ReferenceDecoder/tw-make-clip --size 1920x1080 --fps 23.976 --frames 48 --audio 2,48000,24 "$clip"
echo
host=(build/bin/tarnwick-host --home "$demo/home" --system-root "$demo/root")
"${host[@]}" info "$clip"
echo
"${host[@]}" audio "$clip" "$demo/demo.wav"
echo
"${host[@]}" render "$clip" "$demo/frames" --frames 0,6,12,18,24,30,36,42 --size half
echo
"${host[@]}" play "$clip" --frames 0-23 --ahead 4
echo
# The source settings panel of the clip, one setting changed through its
# sidecar, and the same frame rendered before and after.
"${host[@]}" settings "$clip"
echo
"${host[@]}" render "$clip" "$demo/before" --frames 12 --size quarter
"${host[@]}" settings "$clip" --set exposure=1.5
"${host[@]}" render "$clip" "$demo/after" --frames 12 --size quarter
echo
echo "Demo clip: $clip   its audio: $demo/demo.wav"
echo "Its frames: $demo/frames/frame_*.png   contact sheet: $demo/frames/contact-sheet.png"
echo "Exposure +1.5 through the sidecar: $demo/before/ against $demo/after/ (sidecar: $demo/demo.sidecar)"
