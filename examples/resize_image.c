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
  double xFactor, yFactor;  // used when size.width is 0
  ZovImageSize size;
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
      "  --repeat N       resize N times and report the fastest run (default 1)\n"
      "  --help           print this text\n"
      "\n"
      "Exactly one of --factor and --size is needed. Grey pictures are resized as one channel\n"
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

static int ParseRepeat(const char* text, Options* options) {
  return ParseInt(&text, &options->repeat) && *text == '\0';
}

// Returns 1 to go on, 0 after a complaint.
static int ParseOptions(int argc, char** argv, Options* options) {
  *options = (Options){.methodName = "linear", .method = ZOV_INTERP_LINEAR, .repeat = 1};
  for (int i = 1; i < argc; ++i) {
    const char* const name = argv[i];
    if (strncmp(name, "--", 2) != 0) {
      if (options->input == NULL) {
        options->input = name;
      } else if (options->output == NULL) {
        options->output = name;
      } else {
        fprintf(stderr, "resize_image: unexpected argument %s\n", name);
        return 0;
      }
      continue;
    }
    static const struct {
      const char* name;
      int (*parse)(const char* text, Options* options);
    } kOptions[] = {
        {"--factor", ParseFactor},
        {"--size", ParseSize},
        {"--method", ParseMethod},
        {"--repeat", ParseRepeat},
    };
    size_t known = 0;
    while (known < sizeof kOptions / sizeof kOptions[0] &&
           strcmp(name, kOptions[known].name) != 0) {
      ++known;
    }
    if (known == sizeof kOptions / sizeof kOptions[0]) {
      fprintf(stderr, "resize_image: unknown option %s\n", name);
      return 0;
    }
    if (i + 1 == argc) {
      fprintf(stderr, "resize_image: %s needs a value\n", name);
      return 0;
    }
    ++i;
    if (!kOptions[known].parse(argv[i], options)) {
      fprintf(stderr, "resize_image: bad value for %s: %s\n", name, argv[i]);
      return 0;
    }
  }
  if (options->output == NULL) {
    fputs("resize_image: an input and an output file are needed\n", stderr);
    return 0;
  }
  if ((options->xFactor > 0) == (options->size.width > 0)) {
    fputs("resize_image: give either --factor or --size\n", stderr);
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

static void PrintFailure(ZovStatus status, const Options* options) {
  switch (status) {
    case zovStsInterpolationErr:
      fprintf(stderr, "resize_image: this release does not resize by the method %s yet\n",
              options->methodName);
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

// Resizes all of src to all of dst, and gives the time of the fastest of `repeat` runs.
static int Resize(const Image* src, Image* dst, const Options* options, double* milliseconds) {
  const ZovImageRect srcRoi = {0, 0, src->size.width, src->size.height};
  const ZovImageRect dstRoi = {0, 0, dst->size.width, dst->size.height};
  // These scales map the edges of the source exactly to the edges of the destination: no shift.
  const double xFactor = (double)dst->size.width / src->size.width;
  const double yFactor = (double)dst->size.height / src->size.height;

  int bufferSize = 0;
  ZovStatus status =
      Kelo_zoviResizeGetBufSize(srcRoi, dstRoi, src->channels, options->method, &bufferSize);
  if (status != zovStsNoErr) {
    PrintFailure(status, options);
    return 0;
  }
  Zov8u* const buffer = Kelo_zovsMalloc_8u(bufferSize);
  if (buffer == NULL) {
    fprintf(stderr, "resize_image: no memory for a work buffer of %d bytes\n", bufferSize);
    return 0;
  }
  for (int run = 0; run < options->repeat && status == zovStsNoErr; ++run) {
    const double start = Milliseconds();
    if (src->channels == 1) {
      status = Kelo_zoviResizeSqrPixel_8u_C1R(src->pixels, src->size, src->step, srcRoi,
                                              dst->pixels, dst->step, dstRoi, xFactor, yFactor, 0,
                                              0, options->method, buffer);
    } else {
      status = Kelo_zoviResizeSqrPixel_8u_C4R(src->pixels, src->size, src->step, srcRoi,
                                              dst->pixels, dst->step, dstRoi, xFactor, yFactor, 0,
                                              0, options->method, buffer);
    }
    const double elapsed = Milliseconds() - start;
    if (run == 0 || elapsed < *milliseconds) *milliseconds = elapsed;
  }
  Kelo_zovsFree(buffer);
  if (status != zovStsNoErr) PrintFailure(status, options);
  return status == zovStsNoErr;
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
  if (ok) {
    if (options.size.width == 0) {
      options.size.width = Scaled(src.size.width, options.xFactor);
      options.size.height = Scaled(src.size.height, options.yFactor);
    }
    ok = AllocateImage(&dst, options.size, src.channels, options.output) &&
         Resize(&src, &dst, &options, &milliseconds);
  }
  if (ok) {
    dst.opaque = src.opaque;
    ok = WriteImage(options.output, &dst);
  }
  if (ok) {
    printf("%s: %d x %d %s -> %d x %d, %s: %.3f ms, %.0f megapixels/s\n", options.output,
           src.size.width, src.size.height, src.channels == 1 ? "grey" : "RGBA", dst.size.width,
           dst.size.height, options.methodName, milliseconds,
           1e-3 * dst.size.width * dst.size.height / milliseconds);
  }
  FreeImage(&dst);
  FreeImage(&src);
  return ok ? EXIT_SUCCESS : EXIT_FAILURE;
}
