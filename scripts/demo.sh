#!/usr/bin/env bash
# The library at work, from nothing, on Debian 12: builds it, installs it into build/stage, builds
# the examples against that installation, resizes a photograph by every method, and filters a
# recording of a voice. Installs the Debian packages that are missing.
set -euo pipefail
cd "$(dirname "$0")/.."
scripts/install_deps.sh build examples demo

# Of the package lomiri-wallpapers-16.04; Trevor "Freespace", 2018, licence CC-BY-4.0.
photo=/usr/share/backgrounds/Picture_1A_by_freespace.jpg
stage=$PWD/build/stage
pictures=$PWD/build/demo/pictures
# A spoken test sound of the package alsa-utils.
voice=/usr/share/sounds/alsa/Front_Center.wav
sounds=$PWD/build/demo/sounds

echo "== Library: build and install into $stage"
cmake --preset release -B build/demo/library -DKELOZOV_BUILD_TESTS=OFF >/dev/null
cmake --build build/demo/library
rm -rf "$stage"
cmake --install build/demo/library --prefix "$stage" >/dev/null

echo "== Examples: build against the installation"
rm -rf build/demo/examples
cmake -S examples -B build/demo/examples -G Ninja -DCMAKE_PREFIX_PATH="$stage" >/dev/null
cmake --build build/demo/examples

echo "== Pictures"
resize=$PWD/build/demo/examples/resize_image
mkdir -p "$pictures"
cd "$pictures"
gm convert "$photo" -strip colour.png
gm convert "$photo" -strip -colorspace GRAY -depth 8 grey.png
for method in nearest linear cubic bspline catmullrom mixed lanczos; do
  for picture in colour grey; do
    "$resize" --factor 2.5 --method $method --repeat 10 $picture.png $picture-enlarged-$method.png
    "$resize" --factor 0.4 --method $method --repeat 10 $picture.png $picture-reduced-$method.png
  done
done
for method in linear cubic bspline catmullrom mixed lanczos; do
  "$resize" --factor 0.4 --method $method --antialias --repeat 10 colour.png \
    colour-reduced-$method-antialias.png
done
"$resize" --factor 0.4 --method area --repeat 10 colour.png colour-reduced-area.png
"$resize" --compare --detail 560,620 colour.png comparison.png
echo "comparison.png shows a detail in all methods side by side."
echo "The originals and the results are in $pictures"

echo "== Sounds"
filter=${resize%/*}/filter_sound
mkdir -p "$sounds"
cd "$sounds"
cp "$voice" voice.wav
# filter_voice <name> <option>...: filters the recording, and plots the spectra.
filter_voice() {
  "$filter" "${@:2}" --plot "voice-$1.png" voice.wav "voice-$1.wav"
}
filter_voice lowpass --lowpass 1000
filter_voice highpass --highpass 2000 --taps 254
filter_voice bandpass --bandpass 300,3400 --window blackman --taps 511
filter_voice bandstop --bandstop 800,1600 --window hann --taps 1001
echo "The recording, the results and plots of their spectra are in $sounds"
