#!/usr/bin/env bash
# Pictures of the settings application's windows for the documentation, made
# headless (Qt's offscreen platform) by the application's own script hook, in
# docs/images/. Uses the build in build/ (scripts/build.sh first).
set -euo pipefail
cd "$(dirname "$0")/.."
cmake --build build --target Tarnwick tw-make-clip -j "${TW_JOBS:-2}" >/dev/null

app="$PWD/build/stage/MediaCore/Qervane Tarnwick/Tarnwick.app/Contents/MacOS/Tarnwick"
out="$PWD/docs/images"
work="$(mktemp -d)"
trap 'rm -rf "$work"' EXIT
mkdir -p "$out" "$work/home" "$work/root"
build/ReferenceDecoder/tw-make-clip --size 1920x1080 --frames 24 "$work/A001_C003.braw" >/dev/null

export QT_QPA_PLATFORM=offscreen TARNWICK_HOME="$work/home" TARNWICK_SYSTEM_ROOT="$work/root"
run() {  # script text, then the application's arguments
  printf '%s\n' "$1" >"$work/script.txt"
  shift
  TARNWICK_SCRIPT="$work/script.txt" "$app" "$@" </dev/null >/dev/null 2>&1 || true
}

# Two presets to show in the lists.
run "tab 1
set presetName Warm interior
press presetNew
set presetName Day for night
press presetNew
press ok" -popup

run "set frame 12
set gamma Blackmagic Design Custom
set contrast 0.62
set wbPreset Tungsten
set exposure 0.4
grab $out/settings-app-source-settings.png
press cancel" -sourceSettingsPopup "$work/A001_C003.braw" 0 "$work/in.twPreset" "$work/out.twPreset" 2

for tab in 0 1 2; do
  name=(options presets about)
  run "tab $tab
select presetList 1
grab $out/settings-app-preferences-${name[$tab]}.png
press cancel" -popup
done

run "open $work/A001_C003.braw
set frame 6
set iso 1600
grab $out/settings-app-desktop.png
press quit"
echo "Pictures in $out"
