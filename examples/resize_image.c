// Resizes a PNG picture: reads it by libpng, resizes it by KeloZov, writes the result as PNG.
// Grey pictures are resized as one channel of 8 bits, all others as four (red, green, blue, alpha).
#define _POSIX_C_SOURCE 200112L

#include <kelozov/kelozov.h>
#include <limits.h>
#include <png.h>
#include <setjmp.h>
#include <stdint.h>
#include <stdio.h>
#include <stdlib.h>
#include <string.h>
#ifdef _WIN32
#include <windows.h>
#else
#include <time.h>
#endif

// An image in memory. Rows start on multiples of 64 bytes, `step` bytes apart.
typedef struct Image {
  ZovImageSize size;
  int channels;  // 1 or 4
  int opaque;    // 4 channels of which the last is 255 everywhere
  int step;
  Zov8u* pixels;
} Image;

typedef struct Options {
  const char* input;
  const char* output;
  const char* methodName;
  int method;
  int flags;                // antialias or one of the edges
  int comparison;           // a sheet of all methods in place of one picture
  double xFactor, yFactor;  // used when size.width is 0
  ZovImageSize size;
  double xShift, yShift;
  int detailX, detailY;  // of the sheet, in the picture; its centre when detailX is negative
  int repeat;
} Options;

static const struct {
  const char* name;
  int code;
} kMethods[] = {
    {"nearest", ZOV_INTERP_NEAREST},
    {"linear", ZOV_INTERP_LINEAR},
    {"cubic", ZOV_INTERP_CUBIC},
    {"bspline", ZOV_INTERP_CUBIC_BSPLINE},
    {"catmullrom", ZOV_INTERP_CUBIC_CATMULLROM},
    {"mixed", ZOV_INTERP_CUBIC_MIXED},
    {"lanczos", ZOV_INTERP_LANCZOS},
    {"area", ZOV_INTERP_AREA},
};
enum { kMethodCount = sizeof kMethods / sizeof kMethods[0] };

static void PrintUsage(FILE* file) {
  fputs(
      "usage: resize_image [options] INPUT.png OUTPUT.png\n"
      "\n"
      "  --factor F       scale both directions by F (above 1 enlarges)\n"
      "  --factor FX,FY   scale the width by FX and the height by FY\n"
      "  --size WxH       scale to W by H pixels\n"
      "  --method NAME    nearest, linear (the default), cubic, bspline, catmullrom, mixed,\n"
      "                   lanczos, or area (reduction only)\n"
      "  --antialias      widen the filter when reducing; nearest and area have no use for it\n"
      "  --shift X,Y      move the result by X and Y pixels, fractions too\n"
      "  --edge NAME      blend or fade: smooth the rim of a picture moved by a fraction\n"
      "  --compare        write a sheet that shows a detail in all methods, enlarged and reduced\n"
      "  --detail X,Y     the centre of that detail, in pixels of the picture\n"
      "  --repeat N       resize N times and report the fastest run (default 1)\n"
      "  --help           print this text\n"
      "\n"
      "Exactly one of --factor, --size and --compare is needed. Grey pictures are resized as one "
      "channel\n"
      "of 8 bits, all others as red, green, blue and alpha of 8 bits each; palettes and samples\n"
      "of 16 bits are converted on reading.\n",
      file);
}

static double Milliseconds(void) {
#ifdef _WIN32
  LARGE_INTEGER now, frequency;
  QueryPerformanceCounter(&now);
  QueryPerformanceFrequency(&frequency);
  return 1e3 * (double)now.QuadPart / (double)frequency.QuadPart;
#else
  struct timespec now;
  clock_gettime(CLOCK_MONOTONIC, &now);
  return 1e3 * (double)now.tv_sec + 1e-6 * (double)now.tv_nsec;
#endif
}

// ---- Command line ------------------------------------------------------------------------------

static int ParseDouble(const char** text, double* value) {
  char* end;
  *value = strtod(*text, &end);
  if (end == *text) return 0;
  *text = end;
  return 1;
}

static int ParseInt(const char** text, int* value) {
  char* end;
  const long parsed = strtol(*text, &end, 10);
  if (end == *text || parsed < 1 || parsed > INT_MAX) return 0;
  *text = end;
  *value = (int)parsed;
  return 1;
}

static int ParseFactor(const char* text, Options* options) {
  if (!ParseDouble(&text, &options->xFactor)) return 0;
  options->yFactor = options->xFactor;
  if (*text == ',') {
    ++text;
    if (!ParseDouble(&text, &options->yFactor)) return 0;
  }
  return *text == '\0' && options->xFactor > 0 && options->yFactor > 0;
}

static int ParseSize(const char* text, Options* options) {
  if (!ParseInt(&text, &options->size.width) || (*text != 'x' && *text != 'X')) return 0;
  ++text;
  return ParseInt(&text, &options->size.height) && *text == '\0';
}

static int ParseMethod(const char* text, Options* options) {
  for (int i = 0; i < kMethodCount; ++i) {
    if (strcmp(text, kMethods[i].name) == 0) {
      options->methodName = kMethods[i].name;
      options->method = kMethods[i].code;
      return 1;
    }
  }
  return 0;
}

static int ParseEdge(const char* text, Options* options) {
  const int blend = strcmp(text, "blend") == 0;
  if (!blend && strcmp(text, "fade") != 0) return 0;
  options->flags |= blend ? (int)ZOV_EDGE_BLEND : ZOV_EDGE_FADE;
  return 1;
}

static int ParseShift(const char* text, Options* options) {
  if (!ParseDouble(&text, &options->xShift) || *text != ',') return 0;
  ++text;
  return ParseDouble(&text, &options->yShift) && *text == '\0';
}

static int ParseDetail(const char* text, Options* options) {
  if (!ParseInt(&text, &options->detailX) || *text != ',') return 0;
  ++text;
  return ParseInt(&text, &options->detailY) && *text == '\0';
}

static int ParseRepeat(const char* text, Options* options) {
  return ParseInt(&text, &options->repeat) && *text == '\0';
}

static int SetAntialias(const char* text, Options* options) {
  (void)text;
  options->flags |= ZOV_RESIZE_ANTIALIAS;
  return 1;
}

static int SetComparison(const char* text, Options* options) {
  (void)text;
  options->comparison = 1;
  return 1;
}

static int TakeFile(const char* name, Options* options) {
  const char** const place = options->input == NULL    ? &options->input
                             : options->output == NULL ? &options->output
                                                       : NULL;
  if (place == NULL) {
    fprintf(stderr, "resize_image: unexpected argument %s\n", name);
    return 0;
  }
  *place = name;
  return 1;
}

// Returns 1 to go on, 0 after a complaint.
static int ParseOptions(int argc, char** argv, Options* options) {
  static const struct {
    const char* name;
    int hasValue;
    int (*parse)(const char* text, Options* options);
  } kOptions[] = {
      {"--factor", 1, ParseFactor},     {"--size", 1, ParseSize},
      {"--method", 1, ParseMethod},     {"--repeat", 1, ParseRepeat},
      {"--shift", 1, ParseShift},       {"--edge", 1, ParseEdge},
      {"--antialias", 0, SetAntialias}, {"--detail", 1, ParseDetail},
      {"--compare", 0, SetComparison},
  };
  enum { kOptionCount = sizeof kOptions / sizeof kOptions[0] };
  *options =
      (Options){.methodName = "linear", .method = ZOV_INTERP_LINEAR, .detailX = -1, .repeat = 1};
  for (int i = 1; i < argc; ++i) {
    const char* const name = argv[i];
    if (strncmp(name, "--", 2) != 0) {
      if (!TakeFile(name, options)) return 0;
      continue;
    }
    int known = 0;
    while (known < kOptionCount && strcmp(name, kOptions[known].name) != 0) ++known;
    if (known == kOptionCount) {
      fprintf(stderr, "resize_image: unknown option %s\n", name);
      return 0;
    }
    const char* value = NULL;
    if (kOptions[known].hasValue) {
      if (i + 1 == argc) {
        fprintf(stderr, "resize_image: %s needs a value\n", name);
        return 0;
      }
      value = argv[++i];
    }
    if (!kOptions[known].parse(value, options)) {
      fprintf(stderr, "resize_image: bad value for %s: %s\n", name, value);
      return 0;
    }
  }
  if (options->output == NULL) {
    fputs("resize_image: an input and an output file are needed\n", stderr);
    return 0;
  }
  if ((options->xFactor > 0) + (options->size.width > 0) + options->comparison != 1) {
    fputs("resize_image: give one of --factor, --size and --compare\n", stderr);
    return 0;
  }
  return 1;
}

// ---- Images ------------------------------------------------------------------------------------

static int AllocateImage(Image* image, ZovImageSize size, int channels, const char* name) {
  const int64_t step = ((int64_t)size.width * channels + 63) / 64 * 64;
  *image = (Image){.size = size, .channels = channels};
  if (step > INT_MAX / size.height) {
    fprintf(stderr, "%s: %d x %d pixels are too many\n", name, size.width, size.height);
    return 0;
  }
  image->step = (int)step;
  image->pixels = Kelo_zovsMalloc_8u(image->step * size.height);
  if (image->pixels == NULL) {
    fprintf(stderr, "%s: no memory for %d x %d pixels\n", name, size.width, size.height);
    return 0;
  }
  return 1;
}

static void FreeImage(Image* image) {
  Kelo_zovsFree(image->pixels);
  image->pixels = NULL;
}

// libpng's error pointer holds the name of the file.
static void OnPngError(png_structp png, png_const_charp message) {
  fprintf(stderr, "%s: %s\n", (const char*)png_get_error_ptr(png), message);
  png_longjmp(png, 1);
}

static void OnPngWarning(png_structp png, png_const_charp message) {
  fprintf(stderr, "%s: warning: %s\n", (const char*)png_get_error_ptr(png), message);
}

// The part of reading that libpng leaves by a jump when it fails.
static int ReadPixels(png_structp png, png_infop info, FILE* file, const char* name, Image* image) {
  if (setjmp(png_jmpbuf(png))) return 0;
  png_init_io(png, file);
  png_read_info(png, info);

  // Down to 8 bits a sample, and to either grey or RGBA.
  const int type = png_get_color_type(png, info);
  const int transparent = (type & PNG_COLOR_MASK_ALPHA) || png_get_valid(png, info, PNG_INFO_tRNS);
  const int grey = type == PNG_COLOR_TYPE_GRAY && !transparent;
  png_set_scale_16(png);
  png_set_expand(png);
  if (!grey) {
    png_set_gray_to_rgb(png);
    png_set_add_alpha(png, 0xFF, PNG_FILLER_AFTER);
  }
  const int passes = png_set_interlace_handling(png);
  png_read_update_info(png, info);

  const ZovImageSize size = {(int)png_get_image_width(png, info),
                             (int)png_get_image_height(png, info)};
  if (!AllocateImage(image, size, grey ? 1 : 4, name)) return 0;
  image->opaque = !transparent;
  for (int pass = 0; pass < passes; ++pass) {
    for (int y = 0; y < size.height; ++y) {
      png_read_row(png, image->pixels + (ptrdiff_t)y * image->step, NULL);
    }
  }
  png_read_end(png, NULL);
  return 1;
}

static int ReadImage(const char* name, Image* image) {
  FILE* const file = fopen(name, "rb");
  if (file == NULL) {
    perror(name);
    return 0;
  }
  png_structp png =
      png_create_read_struct(PNG_LIBPNG_VER_STRING, (png_voidp)name, OnPngError, OnPngWarning);
  png_infop info = png != NULL ? png_create_info_struct(png) : NULL;
  const int ok = info != NULL && ReadPixels(png, info, file, name, image);
  png_destroy_read_struct(&png, &info, NULL);
  fclose(file);
  if (!ok) FreeImage(image);
  return ok;
}

static int WritePixels(png_structp png, png_infop info, FILE* file, const Image* image) {
  if (setjmp(png_jmpbuf(png))) return 0;
  png_init_io(png, file);
  const int type = image->channels == 1 ? PNG_COLOR_TYPE_GRAY
                   : image->opaque      ? PNG_COLOR_TYPE_RGB
                                        : PNG_COLOR_TYPE_RGB_ALPHA;
  png_set_IHDR(png, info, (png_uint_32)image->size.width, (png_uint_32)image->size.height, 8, type,
               PNG_INTERLACE_NONE, PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
  png_write_info(png, info);
  if (type == PNG_COLOR_TYPE_RGB) png_set_filler(png, 0, PNG_FILLER_AFTER);  // drops the alpha
  for (int y = 0; y < image->size.height; ++y) {
    png_write_row(png, image->pixels + (ptrdiff_t)y * image->step);
  }
  png_write_end(png, info);
  return 1;
}

static int WriteImage(const char* name, const Image* image) {
  FILE* const file = fopen(name, "wb");
  if (file == NULL) {
    perror(name);
    return 0;
  }
  png_structp png =
      png_create_write_struct(PNG_LIBPNG_VER_STRING, (png_voidp)name, OnPngError, OnPngWarning);
  png_infop info = png != NULL ? png_create_info_struct(png) : NULL;
  int ok = info != NULL && WritePixels(png, info, file, image);
  png_destroy_write_struct(&png, &info);
  if (fclose(file) != 0 && ok) {
    perror(name);
    ok = 0;
  }
  return ok;
}

// ---- Resize ------------------------------------------------------------------------------------

static void PrintFailure(ZovStatus status, const char* methodName) {
  switch (status) {
    case zovStsInterpolationErr:
      fprintf(stderr,
              "resize_image: two flags, or a method or flag that this release has not yet (%s)\n",
              methodName);
      break;
    case zovStsResizeFactorErr:
      fputs("resize_image: the method area only reduces\n", stderr);
      break;
    case zovStsSizeErr:
      fputs("resize_image: the picture is too large\n", stderr);
      break;
    default:
      fprintf(stderr, "resize_image: the resize failed with status %d\n", (int)status);
  }
}

// One resize: a rectangle of a picture to a rectangle of another.
typedef struct Placement {
  ZovImageRect from, to;
  double xFactor, yFactor, xShift, yShift;
  int interpolation;
} Placement;

static ZovStatus RunOnce(const Image* src, const Image* dst, const Placement* p, Zov8u* buffer) {
  if (src->channels == 1) {
    return Kelo_zoviResizeSqrPixel_8u_C1R(src->pixels, src->size, src->step, p->from, dst->pixels,
                                          dst->step, p->to, p->xFactor, p->yFactor, p->xShift,
                                          p->yShift, p->interpolation, buffer);
  }
  return Kelo_zoviResizeSqrPixel_8u_C4R(src->pixels, src->size, src->step, p->from, dst->pixels,
                                        dst->step, p->to, p->xFactor, p->yFactor, p->xShift,
                                        p->yShift, p->interpolation, buffer);
}

// Gives the time of the fastest of `repeat` runs. A warning that a flag was of no use is no
// failure.
static int Resize(const Image* src, const Image* dst, const Placement* placement,
                  const char* methodName, int repeat, double* milliseconds) {
  int bufferSize = 0;
  ZovStatus status = Kelo_zoviResizeGetBufSize(placement->from, placement->to, src->channels,
                                               placement->interpolation, &bufferSize);
  Zov8u* buffer = NULL;
  if (status == zovStsNoErr || status == zovStsAntialiasIgnoredWrn) {
    buffer = Kelo_zovsMalloc_8u(bufferSize);
    if (buffer == NULL) {
      fprintf(stderr, "resize_image: no memory for a work buffer of %d bytes\n", bufferSize);
      return 0;
    }
    for (int run = 0; run < repeat; ++run) {
      const double start = Milliseconds();
      status = RunOnce(src, dst, placement, buffer);
      const double elapsed = Milliseconds() - start;
      if (run == 0 || elapsed < *milliseconds) *milliseconds = elapsed;
    }
    Kelo_zovsFree(buffer);
  }
  if (status == zovStsAntialiasIgnoredWrn) status = zovStsNoErr;
  if (status != zovStsNoErr) PrintFailure(status, methodName);
  return status == zovStsNoErr;
}

// All of a picture to all of another, up to the shift.
static int ResizePicture(const Image* src, const Image* dst, const Options* options,
                         double* milliseconds) {
  // These scales map the edges of the source exactly to the edges of the destination.
  const Placement placement = {
      .from = {0, 0, src->size.width, src->size.height},
      .to = {0, 0, dst->size.width, dst->size.height},
      .xFactor = (double)dst->size.width / src->size.width,
      .yFactor = (double)dst->size.height / src->size.height,
      .xShift = options->xShift,
      .yShift = options->yShift,
      .interpolation = options->method | options->flags,
  };
  return Resize(src, dst, &placement, options->methodName, options->repeat, milliseconds);
}

// ---- Comparison --------------------------------------------------------------------------------

// The letters, digits and signs of the labels, of 5 by 7 dots, a byte for each row, the leftmost
// dot in bit 4.
static const struct {
  char letter;
  Zov8u rows[7];
} kGlyphs[] = {
    {'A', {14, 17, 17, 31, 17, 17, 17}}, {'B', {30, 17, 17, 30, 17, 17, 30}},
    {'C', {14, 17, 16, 16, 16, 17, 14}}, {'D', {30, 17, 17, 17, 17, 17, 30}},
    {'E', {31, 16, 16, 30, 16, 16, 31}}, {'5', {31, 16, 30, 1, 1, 17, 14}},
    {'I', {14, 4, 4, 4, 4, 4, 14}},      {'L', {16, 16, 16, 16, 16, 16, 31}},
    {'M', {17, 27, 21, 21, 17, 17, 17}}, {'N', {17, 25, 21, 19, 17, 17, 17}},
    {'O', {14, 17, 17, 17, 17, 17, 14}}, {'P', {30, 17, 17, 30, 16, 16, 16}},
    {'R', {30, 17, 17, 30, 20, 18, 17}}, {'S', {15, 16, 16, 14, 1, 1, 30}},
    {'T', {31, 4, 4, 4, 4, 4, 4}},       {'U', {17, 17, 17, 17, 17, 17, 14}},
    {'X', {17, 17, 10, 4, 10, 17, 17}},  {'Z', {31, 1, 2, 4, 8, 16, 31}},
    {'0', {14, 17, 19, 21, 25, 17, 14}}, {'2', {14, 17, 1, 6, 8, 16, 31}},
    {'4', {2, 6, 10, 18, 31, 2, 2}},     {'8', {14, 17, 17, 14, 17, 17, 14}},
    {'.', {0, 0, 0, 0, 0, 12, 12}},      {'+', {0, 4, 4, 31, 4, 4, 0}},
};
enum { kGlyphCount = sizeof kGlyphs / sizeof kGlyphs[0], kDot = 2 };

static void FillRect(const Image* image, ZovImageRect rect, Zov8u value) {
  for (int y = rect.y; y < rect.y + rect.height; ++y) {
    Kelo_zovsSet_8u(value, image->pixels + (ptrdiff_t)y * image->step + rect.x * image->channels,
                    rect.width * image->channels);
  }
}

static void DrawText(const Image* image, int x, int y, const char* text) {
  for (; *text != '\0'; ++text, x += 6 * kDot) {
    const char letter = *text >= 'a' && *text <= 'z' ? (char)(*text - 'a' + 'A') : *text;
    for (int glyph = 0; glyph < kGlyphCount; ++glyph) {
      if (kGlyphs[glyph].letter != letter) continue;
      for (int dot = 0; dot < 35; ++dot) {
        if ((kGlyphs[glyph].rows[dot / 5] >> (4 - dot % 5) & 1) == 0) continue;
        const ZovImageRect at = {x + dot % 5 * kDot, y + dot / 5 * kDot, kDot, kDot};
        FillRect(image, at, 255);
      }
    }
  }
}

enum { kTileWidth = 320, kTileHeight = 240, kMargin = 16, kLabel = 24, kColumns = 4 };

// Detail of `width` times `height` pixels around the chosen place, kept inside the picture.
static ZovImageRect Detail(const Image* src, const Options* options, int width, int height) {
  const int x = options->detailX < 0 ? src->size.width / 2 : options->detailX;
  const int y = options->detailX < 0 ? src->size.height / 2 : options->detailY;
  ZovImageRect rect = {x - width / 2, y - height / 2, width, height};
  if (rect.x > src->size.width - width) rect.x = src->size.width - width;
  if (rect.y > src->size.height - height) rect.y = src->size.height - height;
  if (rect.x < 0) rect.x = 0;
  if (rect.y < 0) rect.y = 0;
  return rect;
}

// Resizes a detail to the rectangle of the sheet that starts at (x, y).
static int PlaceDetail(const Image* src, ZovImageRect detail, const Image* sheet, int x, int y,
                       double factor, int interpolation, const char* name) {
  double milliseconds;
  const Placement placement = {
      .from = detail,
      .to = {x, y, (int)(detail.width * factor), (int)(detail.height * factor)},
      .xFactor = factor,
      .yFactor = factor,
      .xShift = x - detail.x * factor,
      .yShift = y - detail.y * factor,
      .interpolation = interpolation,
  };
  return Resize(src, sheet, &placement, name, 1, &milliseconds);
}

// Left and top of tile `index` of the sheet.
static int TileX(int index) { return kMargin + index % kColumns * (kTileWidth + kMargin); }
static int TileY(int index) {
  return kMargin + kLabel + index / kColumns * (kTileHeight + kLabel + kMargin);
}

// The detail enlarged 8 times by every method that enlarges, then a larger one reduced to a quarter
// by every method, with and without antialias; the reduced ones are shown with every pixel doubled.
static int Compare(const Image* src, const Options* options, Image* sheet) {
  enum { kEnlarged = 8, kTiles = 24 };
  const ZovImageRect small = Detail(src, options, kTileWidth / 8, kTileHeight / 8);
  const ZovImageRect large = Detail(src, options, kTileWidth * 2, kTileHeight * 2);
  if (src->size.width < large.width || src->size.height < large.height) {
    fprintf(stderr, "resize_image: a comparison needs %d x %d pixels\n", large.width, large.height);
    return 0;
  }
  const ZovImageSize size = {kMargin + kColumns * (kTileWidth + kMargin), TileY(kTiles) - kLabel};
  if (!AllocateImage(sheet, size, src->channels, options->output)) return 0;
  const ZovImageRect all = {0, 0, size.width, size.height};
  FillRect(sheet, all, 48);

  Image reduced = {.pixels = NULL};
  const ZovImageSize reducedSize = {kTileWidth / 2, kTileHeight / 2};
  int ok = AllocateImage(&reduced, reducedSize, src->channels, options->output);
  int tile = 0;
  for (int i = 0; i < kMethodCount && ok; ++i) {
    if (kMethods[i].code == ZOV_INTERP_AREA) continue;
    char label[40];
    snprintf(label, sizeof label, "%s x 8", kMethods[i].name);
    DrawText(sheet, TileX(tile), TileY(tile) - 18, label);
    ok = PlaceDetail(src, small, sheet, TileX(tile), TileY(tile), 8, kMethods[i].code, label);
    ++tile;
  }
  tile = kEnlarged;
  for (int flag = 0; flag <= ZOV_RESIZE_ANTIALIAS; flag += ZOV_RESIZE_ANTIALIAS) {
    for (int i = 0; i < kMethodCount && ok; ++i) {
      const int code = kMethods[i].code;
      if (flag != 0 && (code == ZOV_INTERP_NEAREST || code == ZOV_INTERP_AREA)) continue;
      char label[40];
      snprintf(label, sizeof label, "%s%s", kMethods[i].name,
               flag != 0 ? " + antialias" : " x 0.25");
      DrawText(sheet, TileX(tile), TileY(tile) - 18, label);
      const ZovImageRect whole = {0, 0, reducedSize.width, reducedSize.height};
      FillRect(&reduced, whole, 128);
      ok = PlaceDetail(src, large, &reduced, 0, 0, 0.25, code | flag, label) &&
           PlaceDetail(&reduced, whole, sheet, TileX(tile), TileY(tile), 2, ZOV_INTERP_NEAREST,
                       label);
      ++tile;
    }
  }
  FreeImage(&reduced);
  sheet->opaque = src->opaque;
  return ok;
}

static int Scaled(int length, double factor) {
  const double scaled = length * factor + 0.5;
  return scaled < 1 ? 1 : scaled > INT_MAX ? INT_MAX : (int)scaled;
}

int main(int argc, char** argv) {
  for (int i = 1; i < argc; ++i) {
    if (strcmp(argv[i], "--help") == 0) {
      PrintUsage(stdout);
      return EXIT_SUCCESS;
    }
  }
  Options options;
  if (!ParseOptions(argc, argv, &options)) {
    fputs("Try resize_image --help.\n", stderr);
    return 2;
  }

  Image src = {.pixels = NULL}, dst = {.pixels = NULL};
  double milliseconds = 0;
  int ok = ReadImage(options.input, &src);
  if (ok && options.comparison) {
    ok = Compare(&src, &options, &dst);
  } else if (ok) {
    if (options.size.width == 0) {
      options.size.width = Scaled(src.size.width, options.xFactor);
      options.size.height = Scaled(src.size.height, options.yFactor);
    }
    ok = AllocateImage(&dst, options.size, src.channels, options.output);
    if (ok) {
      // What a shifted picture leaves free is black.
      const ZovImageRect all = {0, 0, dst.size.width, dst.size.height};
      FillRect(&dst, all, 0);
      ok = ResizePicture(&src, &dst, &options, &milliseconds);
    }
    dst.opaque = src.opaque;
  }
  if (ok) ok = WriteImage(options.output, &dst);
  if (ok && !options.comparison) {
    printf("%s: %d x %d %s -> %d x %d, %s: %.3f ms, %.0f megapixels/s\n", options.output,
           src.size.width, src.size.height, src.channels == 1 ? "grey" : "RGBA", dst.size.width,
           dst.size.height, options.methodName, milliseconds,
           1e-3 * dst.size.width * dst.size.height / milliseconds);
  }
  FreeImage(&dst);
  FreeImage(&src);
  return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}
