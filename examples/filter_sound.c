// Filters a WAV file: designs a low-, high-, band-pass or band-stop filter from edges in hertz,
// filters the sound as a stream, block by block, and compares the spectra before and after with
// what the design promises. Samples are read and written by libsndfile; gnuplot draws the plot.
#define _POSIX_C_SOURCE 200112L

#include <kelozov/kelozov.h>
#include <math.h>
#include <sndfile.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#ifdef _WIN32
#include <windows.h>
#define popen _popen
#define pclose _pclose
#else
#include <time.h>
#endif

// Spectra are averages over windowed blocks, which overlap by half.
enum { kOrder = 12, kLength = 1 << kOrder, kBins = kLength / 2 + 1 };
// The response of the taps is computed this much finer.
enum { kFineOrder = 17, kFineLength = 1 << kFineOrder, kFineBins = kFineLength / 2 + 1 };
enum { kFinePerBin = kFineLength / kLength };
enum { kMostTaps = 65535, kMostChannels = 64, kMostBands = 16 };

typedef enum Kind { kNone, kLowpass, kHighpass, kBandpass, kBandstop } Kind;

static const struct {
  const char* name;
  int code;
  double halfMainLobe;  // of the window's transform, in units of rate / taps
} kWindows[] = {
    {"hamming", ZOV_WIN_HAMMING, 2},
    {"hann", ZOV_WIN_HANN, 2},
    {"blackman", ZOV_WIN_BLACKMAN_OPT, 3},
    {"bartlett", ZOV_WIN_BARTLETT, 2},
    {"none", -1, 1},
};
enum { kWindowCount = sizeof kWindows / sizeof kWindows[0] };

typedef struct Options {
  const char* input;
  const char* output;
  const char* plot;
  Kind kind;
  double edges[2];  // in hertz
  int taps, block, window;
} Options;

// The power spectrum of a stream, summed over whole blocks; a cut inside a block would spread.
typedef struct Spectrum {
  ZovFFTSpec_R_32f* fft;
  Zov8u* work;
  float waiting[kMostChannels][kLength];
  int filled;
  long blocks;
  double power[kBins];
} Spectrum;

static int Fail(const char* what) {
  fprintf(stderr, "filter_sound: %s\n", what);
  return 0;
}

static int Succeeded(ZovStatus status, const char* what) {
  if (status == zovStsNoErr) return 1;
  fprintf(stderr, "filter_sound: %s: status %d\n", what, (int)status);
  return 0;
}

static double Seconds(void) {
#ifdef _WIN32
  LARGE_INTEGER now, frequency;
  QueryPerformanceCounter(&now);
  QueryPerformanceFrequency(&frequency);
  return (double)now.QuadPart / (double)frequency.QuadPart;
#else
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return (double)now.tv_sec + 1e-9 * (double)now.tv_nsec;
#endif
}

// ---- Command line ------------------------------------------------------------------------------

static void PrintUsage(FILE* file) {
  fputs(
      "usage: filter_sound [options] INPUT.wav OUTPUT.wav\n"
      "\n"
      "  --lowpass F      keep what lies below F hertz\n"
      "  --highpass F     keep what lies above F hertz\n"
      "  --bandpass F,G   keep what lies between F and G hertz\n"
      "  --bandstop F,G   remove what lies between F and G hertz\n"
      "  --taps N         length of the filter, 5 to 65535 (default 255)\n"
      "  --window NAME    hamming (the default), hann, blackman, bartlett or none\n"
      "  --block N        samples of each channel that are filtered at once (default 4096)\n"
      "  --plot PLOT.png  draw the spectra of input and output\n"
      "  --help           print this text\n"
      "\n"
      "The output has 24 bits a sample and stays in time with the input. The program ends with an\n"
      "error when the stop band of the output is higher than the design promises.\n",
      file);
}

static int ParseEdges(const char* text, int count, Options* options) {
  char* end;
  options->edges[0] = options->edges[1] = strtod(text, &end);
  if (end == text) return 0;
  if (count == 2) {
    if (*end != ',') return 0;
    text = end + 1;
    options->edges[1] = strtod(text, &end);
    if (end == text) return 0;
  }
  return *end == '\0';
}

static int ParseCount(const char* text, int least, int most, int* value) {
  char* end;
  const long count = strtol(text, &end, 10);
  if (end == text || *end != '\0' || count < least || count > most) return 0;
  *value = (int)count;
  return 1;
}

static int ParseOption(const char* name, const char* value, Options* options) {
  static const char* const kKinds[] = {"", "--lowpass", "--highpass", "--bandpass", "--bandstop"};
  for (int kind = kLowpass; kind <= kBandstop; ++kind) {
    if (strcmp(name, kKinds[kind]) == 0) {
      options->kind = (Kind)kind;
      return ParseEdges(value, kind >= kBandpass ? 2 : 1, options);
    }
  }
  if (strcmp(name, "--taps") == 0) return ParseCount(value, 5, kMostTaps, &options->taps);
  if (strcmp(name, "--block") == 0) return ParseCount(value, 1, 1 << 20, &options->block);
  if (strcmp(name, "--plot") == 0) {
    options->plot = value;
    return 1;
  }
  if (strcmp(name, "--window") != 0) return 0;
  for (int window = 0; window < kWindowCount; ++window) {
    if (strcmp(value, kWindows[window].name) == 0) {
      options->window = window;
      return 1;
    }
  }
  return 0;
}

static int ParseOptions(int argc, char** argv, Options* options) {
  *options = (Options){.taps = 255, .block = 4096};
  for (int i = 1; i < argc; ++i) {
    if (strncmp(argv[i], "--", 2) == 0) {
      if (i + 1 == argc || !ParseOption(argv[i], argv[i + 1], options)) {
        fprintf(stderr, "filter_sound: %s is unknown or lacks a good value\n", argv[i]);
        return 0;
      }
      ++i;
    } else if (options->input == NULL) {
      options->input = argv[i];
    } else if (options->output == NULL) {
      options->output = argv[i];
    } else {
      return Fail("too many files");
    }
  }
  if (options->output == NULL) return Fail("an input and an output file are needed");
  if (options->kind == kNone) return Fail("give one of the four filters");
  return 1;
}

// ---- Design ------------------------------------------------------------------------------------

static int DesignTaps(const Options* options, double rate, Zov64f* taps) {
  const double low = options->edges[0] / rate, high = options->edges[1] / rate;
  const int count = options->taps, window = kWindows[options->window].code;
  ZovStatus status = zovStsNoErr;
  switch (options->kind) {
    case kLowpass:
      status = Kelo_zovsFIRGenLowpass_64f(low, taps, count, window, 1);
      break;
    case kHighpass:
      status = Kelo_zovsFIRGenHighpass_64f(low, taps, count, window, 1);
      break;
    case kBandpass:
      status = Kelo_zovsFIRGenBandpass_64f(low, high, taps, count, window, 1);
      break;
    default:
      status = Kelo_zovsFIRGenBandstop_64f(low, high, taps, count, window, 1);
      break;
  }
  if (status == zovStsSizeErr) {
    return Fail("the edges must ascend between 0 and half the sampling rate");
  }
  return Succeeded(status, "design");
}

// |H|^2 at kFineBins frequencies from 0 to half the sampling rate.
static int ResponseOf(const Zov64f* taps, int count, Zov64f* response) {
  ZovFFTSpec_R_64f* fft = NULL;
  if (!Succeeded(Kelo_zovsFFTInitAlloc_R_64f(&fft, kFineOrder, ZOV_FFT_SCALE_NONE, 0), "FFT")) {
    return 0;
  }
  Kelo_zovsZero_64f(response, kFineLength + 2);
  Kelo_zovsCopy_64f(taps, response, count);
  const ZovStatus status = Kelo_zovsFFTFwd_RToCCS_64f(response, response, fft, NULL);
  Kelo_zovsFFTFree_R_64f(fft);
  for (int k = 0; k < kFineBins; ++k) {
    response[k] = response[2 * k] * response[2 * k] + response[2 * k + 1] * response[2 * k + 1];
  }
  return Succeeded(status, "FFT");
}

// Whether a frequency lies in the stop band, beyond the transition at an edge.
static int IsStopped(const Options* options, double rate, double frequency) {
  const double guard = kWindows[options->window].halfMainLobe * rate / options->taps;
  switch (options->kind) {
    case kLowpass:
      return frequency >= options->edges[0] + guard;
    case kHighpass:
      return frequency <= options->edges[0] - guard;
    case kBandpass:
      return frequency <= options->edges[0] - guard || frequency >= options->edges[1] + guard;
    default:
      return frequency >= options->edges[0] + guard && frequency <= options->edges[1] - guard;
  }
}

// ---- Spectra -----------------------------------------------------------------------------------

static Spectrum* NewSpectrum(void) {
  Spectrum* const spectrum = (Spectrum*)calloc(1, sizeof *spectrum);
  if (spectrum != NULL &&
      Kelo_zovsFFTInitAlloc_R_32f(&spectrum->fft, kOrder, ZOV_FFT_SCALE_FWD, 0) != zovStsNoErr) {
    free(spectrum);
    return NULL;
  }
  return spectrum;
}

static void FreeSpectrum(Spectrum* spectrum) {
  if (spectrum == NULL) return;
  Kelo_zovsFFTFree_R_32f(spectrum->fft);
  free(spectrum);
}

static void TakeBlock(Spectrum* spectrum, const float* samples) {
  float bins[kLength + 2];
  Kelo_zovsCopy_32f(samples, bins, kLength);
  Kelo_zovsWinHann_32f_I(bins, kLength);
  Kelo_zovsFFTFwd_RToCCS_32f(bins, bins, spectrum->fft, NULL);
  for (int k = 0; k < kBins; ++k) {
    spectrum->power[k] +=
        (double)bins[2 * k] * bins[2 * k] + (double)bins[2 * k + 1] * bins[2 * k + 1];
  }
}

static void TakeBlocks(Spectrum* spectrum, int channels) {
  for (int c = 0; c < channels; ++c) {
    TakeBlock(spectrum, spectrum->waiting[c]);
    memmove(spectrum->waiting[c], spectrum->waiting[c] + kLength / 2, sizeof(float) * kLength / 2);
  }
  spectrum->blocks += channels;
  spectrum->filled = kLength / 2;
}

// `rows` holds `count` samples of each channel.
static void FeedSpectrum(Spectrum* spectrum, float* const* rows, int channels, int count) {
  for (int done = 0; done < count;) {
    const int room = kLength - spectrum->filled;
    const int step = count - done < room ? count - done : room;
    for (int c = 0; c < channels; ++c) {
      memcpy(spectrum->waiting[c] + spectrum->filled, rows[c] + done, sizeof(float) * (size_t)step);
    }
    spectrum->filled += step;
    done += step;
    if (spectrum->filled == kLength) TakeBlocks(spectrum, channels);
  }
}

static double Decibels(double ratio) { return 10 * log10(ratio > 1e-30 ? ratio : 1e-30); }

// Input, output and what the response makes of the input, over the bins that `takes` chooses.
typedef struct Levels {
  double input, output, expected;
} Levels;

static void AddBin(Levels* levels, int k, const Spectrum* input, const Spectrum* output,
                   const Zov64f* response) {
  levels->input += input->power[k];
  levels->output += output->power[k];
  levels->expected += input->power[k] * response[k * kFinePerBin];
}

static int Report(const Options* options, double rate, const Spectrum* input,
                  const Spectrum* output, const Zov64f* response) {
  // A sine of full scale is 0 dB: 1/4 in its bin, half of that in either neighbour.
  const double unit = 16 / 1.5 / (double)input->blocks;
  printf("  octave band, Hz      input dB  output dB    change  by design\n");
  double low = 0, high = rate / 2;
  double edges[kMostBands + 1];
  int bands = 0;
  for (edges[0] = high; bands < kMostBands - 1 && edges[bands] > 40; ++bands) {
    edges[bands + 1] = edges[bands] / 2;
  }
  edges[++bands] = 0;
  for (int band = bands - 1; band >= 0; --band) {
    Levels levels = {0, 0, 0};
    low = edges[band + 1];
    high = edges[band];
    for (int k = 0; k < kBins; ++k) {
      const double frequency = rate * k / kLength;
      if (frequency >= low && frequency < high) AddBin(&levels, k, input, output, response);
    }
    if (levels.input <= 0) continue;
    printf("  %7.0f to %7.0f  %9.1f  %9.1f  %8.1f  %9.1f\n", low, high,
           Decibels(levels.input * unit), Decibels(levels.output * unit),
           Decibels(levels.output / levels.input), Decibels(levels.expected / levels.input));
  }

  double worst = 0;
  for (int k = 0; k < kFineBins; ++k) {
    if (IsStopped(options, rate, rate * k / kFineLength) && response[k] > worst)
      worst = response[k];
  }
  Levels stop = {0, 0, 0};
  for (int k = 0; k < kBins; ++k) {
    if (IsStopped(options, rate, rate * k / kLength)) AddBin(&stop, k, input, output, response);
  }
  if (worst == 0 || stop.input == 0) {
    printf("  no stop band: too few taps for these edges\n");
    return 1;
  }
  const double promised = Decibels(worst), measured = Decibels(stop.output / stop.input);
  const int holds = measured <= promised + 0.5;
  printf("  stop band: the design promises %.1f dB or less, measured %.1f dB: %s\n", promised,
         measured, holds ? "holds" : "MISSED");
  return holds;
}

static int Plot(const Options* options, double rate, const Spectrum* input, const Spectrum* output,
                const Zov64f* response) {
  FILE* const gnuplot = popen("gnuplot", "w");
  if (gnuplot == NULL) return Fail("gnuplot does not start");
  fprintf(gnuplot,
          "set terminal pngcairo size 1200,700 font 'sans,11'\n"
          "set output '%s'\n"
          "set logscale x\n"
          "set xrange [30:%g]\n"
          "set yrange [-160:10]\n"
          "set xlabel 'frequency, Hz'\n"
          "set ylabel 'power relative to the strongest bin of the input, and gain, dB'\n"
          "set grid\n"
          "set key bottom left\n"
          "plot '-' using 1:2 with lines lc rgb '#909090' title 'input', "
          "'-' using 1:2 with lines lc rgb '#0060c0' title 'output', "
          "'-' using 1:2 with lines lc rgb '#d06000' title 'gain of the design'\n",
          options->plot, rate / 2);
  double most = 0;
  for (int k = 0; k < kBins; ++k) most = input->power[k] > most ? input->power[k] : most;
  const Spectrum* const both[] = {input, output};
  for (int which = 0; which < 2; ++which) {
    for (int k = 1; k < kBins; ++k) {
      fprintf(gnuplot, "%g %g\n", rate * k / kLength, Decibels(both[which]->power[k] / most));
    }
    fprintf(gnuplot, "e\n");
  }
  for (int k = 1; k < kBins; ++k) {
    fprintf(gnuplot, "%g %g\n", rate * k / kLength, Decibels(response[k * kFinePerBin]));
  }
  fprintf(gnuplot, "e\n");
  return pclose(gnuplot) == 0 ? 1 : Fail("gnuplot fails");
}

// ---- The stream --------------------------------------------------------------------------------

typedef struct Stream {
  SNDFILE* source;
  SNDFILE* target;
  int channels, block;
  ZovFIRState* filters[kMostChannels];
  float* frames;               // as in the file, the channels of a sample together
  float* rows[kMostChannels];  // channel by channel
  Spectrum* before;
  Spectrum* after;
  double seconds;   // spent in the filter
  double filtered;  // samples
} Stream;

static int OpenStream(Stream* stream, const Options* options, const SF_INFO* info,
                      const Zov64f* taps) {
  SF_INFO format = {.samplerate = info->samplerate,
                    .channels = info->channels,
                    .format = SF_FORMAT_WAV | SF_FORMAT_PCM_24};
  stream->channels = info->channels;
  stream->block = options->block;
  stream->before = NewSpectrum();
  stream->after = NewSpectrum();
  const size_t block = (size_t)options->block;
  stream->frames = (float*)malloc(sizeof(float) * block * (size_t)info->channels);
  if (stream->before == NULL || stream->after == NULL || stream->frames == NULL) {
    return Fail("out of memory");
  }
  for (int c = 0; c < stream->channels; ++c) {
    stream->rows[c] = (float*)malloc(sizeof(float) * block);
    if (stream->rows[c] == NULL) return Fail("out of memory");
    const ZovStatus status =
        Kelo_zovsFIRInitAlloc64f_32f(&stream->filters[c], taps, options->taps, NULL);
    if (!Succeeded(status, "filter")) return 0;
  }
  stream->target = sf_open(options->output, SFM_WRITE, &format);
  if (stream->target == NULL) return Fail(sf_strerror(NULL));
  sf_command(stream->target, SFC_SET_CLIPPING, NULL, SF_TRUE);
  return 1;
}

static void CloseStream(Stream* stream) {
  for (int c = 0; c < stream->channels; ++c) {
    if (stream->filters[c] != NULL) Kelo_zovsFIRFree64f_32f(stream->filters[c]);
    free(stream->rows[c]);
  }
  FreeSpectrum(stream->before);
  FreeSpectrum(stream->after);
  free(stream->frames);
  if (stream->target != NULL) sf_close(stream->target);
}

// Reads up to a block; past the end of the file there is silence. Returns the samples of the file.
static int ReadBlock(Stream* stream) {
  const int channels = stream->channels;
  const int count = (int)sf_readf_float(stream->source, stream->frames, stream->block);
  for (int c = 0; c < channels; ++c) {
    for (int i = 0; i < stream->block; ++i) {
      stream->rows[c][i] = i < count ? stream->frames[i * channels + c] : 0;
    }
  }
  return count;
}

// Filters `count` samples of each channel in place and writes all but the first `skip`.
static int FilterBlock(Stream* stream, int count, int skip) {
  const int channels = stream->channels;
  const double start = Seconds();
  for (int c = 0; c < channels; ++c) {
    float* const row = stream->rows[c];
    if (!Succeeded(Kelo_zovsFIR64f_32f(row, row, count, stream->filters[c]), "filter")) return 0;
  }
  stream->seconds += Seconds() - start;
  stream->filtered += (double)count * channels;
  for (int c = 0; c < channels; ++c) {
    for (int i = skip; i < count; ++i)
      stream->frames[(i - skip) * channels + c] = stream->rows[c][i];
  }
  if (sf_writef_float(stream->target, stream->frames, count - skip) != count - skip) {
    return Fail(sf_strerror(stream->target));
  }
  return 1;
}

// A filter of N taps is (N - 1) / 2 samples late: as many of its outputs are left out at the start
// and asked for at the end.
static int RunStream(Stream* stream, int taps) {
  int skip = (taps - 1) / 2;
  sf_count_t left = skip;
  for (;;) {
    int count = ReadBlock(stream);
    FeedSpectrum(stream->before, stream->rows, stream->channels, count);
    if (count < stream->block) {
      const int silence = (int)(left < stream->block - count ? left : stream->block - count);
      left -= silence;
      count += silence;
    }
    if (count == 0) break;
    const int skipped = skip < count ? skip : count;
    if (!FilterBlock(stream, count, skipped)) return 0;
    skip -= skipped;
    FeedSpectrum(stream->after, stream->rows, stream->channels, count);
  }
  return 1;
}

int main(int argc, char** argv) {
  Options options;
  for (int i = 1; i < argc; ++i) {
    if (strcmp(argv[i], "--help") == 0) {
      PrintUsage(stdout);
      return EXIT_SUCCESS;
    }
  }
  if (!ParseOptions(argc, argv, &options)) {
    fputs("Try filter_sound --help.\n", stderr);
    return 2;
  }
  SF_INFO info = {0};
  Stream stream = {0};
  stream.source = sf_open(options.input, SFM_READ, &info);
  if (stream.source == NULL) {
    Fail(sf_strerror(NULL));
    return EXIT_FAILURE;
  }
  const double rate = info.samplerate;
  Zov64f* const taps = (Zov64f*)malloc(sizeof(Zov64f) * (size_t)options.taps);
  Zov64f* const response = (Zov64f*)malloc(sizeof(Zov64f) * (kFineLength + 2));
  int ok = taps != NULL && response != NULL ? 1 : Fail("out of memory");
  ok = ok && (info.channels <= kMostChannels || Fail("too many channels"));
  ok = ok && DesignTaps(&options, rate, taps) && ResponseOf(taps, options.taps, response) &&
       OpenStream(&stream, &options, &info, taps) && RunStream(&stream, options.taps);
  if (ok) {
    printf("%s: %d channels, %.0f Hz, %d taps, blocks of %d: %.1f million samples/s\n",
           options.output, info.channels, rate, options.taps, options.block,
           1e-6 * stream.filtered / stream.seconds);
    if (stream.before->blocks == 0) {
      printf("  shorter than %d samples: no spectra\n", kLength);
    } else {
      ok = Report(&options, rate, stream.before, stream.after, response);
      if (options.plot != NULL) {
        ok = Plot(&options, rate, stream.before, stream.after, response) && ok;
      }
    }
  }
  CloseStream(&stream);
  sf_close(stream.source);
  free(response);
  free(taps);
  return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}
