// PNG, JPEG, GIF and TIFF through the standard libraries, each built in when
// the build found it. Everything decodes from memory into a 24-bit picture;
// declared sizes are checked before any allocation, and library errors come
// back as a failed read, never as a message or an exit.
//
// libpng and libjpeg report errors by longjmp: the functions that call them
// keep only plain data in their frames, and whatever they allocate is held
// in a context struct and freed on both roads.
#include "platform/fichiers.h"
#include "platform/imagefichier.h"

#include <csetjmp>
#include <cstdlib>
#include <cstring>
#include <unistd.h>

#ifdef TESS_PNG
#include <png.h>
#endif
#ifdef TESS_JPEG
#include <jpeglib.h>
#include <jerror.h>
#endif
#ifdef TESS_GIF
#include <gif_lib.h>
#endif
#ifdef TESS_TIFF
#include <tiffio.h>
#endif

namespace {

// The pixel (x, y from the top) of a bottom-up 24-bit picture.
inline uint8_t* Pixel(Image& image, int x, int y) {
    return image.pixels + (size_t)(image.hauteur - 1 - y) * image.pas + (size_t)x * 3;
}
inline const uint8_t* Pixel(const Image& image, int x, int y) {
    return image.pixels + (size_t)(image.hauteur - 1 - y) * image.pas + (size_t)x * 3;
}
inline void PoseRgb(uint8_t* p, uint8_t r, uint8_t g, uint8_t b) {
    p[0] = b;
    p[1] = g;
    p[2] = r;
}
// Row y of a bottom-up picture as red, green, blue bytes.
void LigneRgb(const Image& image, int y, int largeur, uint8_t* rgb) {
    const uint8_t* s = Pixel(image, 0, y);
    for (int x = 0; x < largeur; ++x, s += 3, rgb += 3) PoseRgb(rgb, s[0], s[1], s[2]);
}
// A file descriptor of its own on the stream's file, for the libraries that
// write to descriptors and close them. A stream with no descriptor (a
// test's failing stream) gives -1.
#if defined(TESS_GIF) || defined(TESS_TIFF)
int Descripteur(FILE* f) {
    const int n = fileno(f);
    return n >= 0 ? dup(n) : -1;
}
#endif

#if defined(TESS_PNG) || defined(TESS_GIF) || defined(TESS_TIFF)
struct LecteurMemoire {
    const uint8_t* donnees;
    size_t taille;
    size_t position;
    size_t Lit(void* sortie, size_t n) {
        const size_t k = n < taille - position ? n : taille - position;
        memcpy(sortie, donnees + position, k);
        position += k;
        return k;
    }
};
#endif

// ---- PNG -------------------------------------------------------------------------

#ifdef TESS_PNG
void PngLit(png_structp png, png_bytep sortie, size_t n) {
    auto* m = (LecteurMemoire*)png_get_io_ptr(png);
    if (m->Lit(sortie, n) != n) png_error(png, "truncated");
}
void PngErreur(png_structp png, png_const_charp) { longjmp(png_jmpbuf(png), 1); }
void PngAvertissement(png_structp, png_const_charp) {}

struct ContextePng {
    png_structp png = nullptr;
    png_infop info = nullptr;
    // Set between setjmp and a possible longjmp, so kept out of registers.
    uint8_t* volatile ligne = nullptr; // one row, or the whole picture when interlaced
    png_bytep* volatile lignes = nullptr;
};

int LitPng(const uint8_t* donnees, size_t taille, Image& image, const uint8_t transparent[3]) {
    LecteurMemoire m{donnees, taille, 0};
    ContextePng c;
    c.png = png_create_read_struct(PNG_LIBPNG_VER_STRING, nullptr, PngErreur, PngAvertissement);
    if (!c.png) return 0;
    c.info = png_create_info_struct(c.png);
    volatile int bon = 0;
    if (c.info && setjmp(png_jmpbuf(c.png)) == 0) {
        png_set_read_fn(c.png, &m, PngLit);
        png_set_user_limits(c.png, COTE_IMAGE_MAX, COTE_IMAGE_MAX);
        png_read_info(c.png, c.info);
        const png_uint_32 l = png_get_image_width(c.png, c.info), h = png_get_image_height(c.png, c.info);
        const bool simple = png_get_color_type(c.png, c.info) == PNG_COLOR_TYPE_RGB &&
                            png_get_bit_depth(c.png, c.info) == 8 && !png_get_valid(c.png, c.info, PNG_INFO_tRNS) &&
                            png_get_interlace_type(c.png, c.info) == PNG_INTERLACE_NONE;
        if (TailleImageAdmise(l, h) && simple) {
            // Eight-bit RGB with no transparency, the common case: rows as
            // stored, turned to B G R on the way into the picture.
            png_read_update_info(c.png, c.info);
            if (png_get_rowbytes(c.png, c.info) == (size_t)l * 3 && CreeImage(image, (int)l, (int)h, 24))
                c.ligne = (uint8_t*)malloc((size_t)l * 3);
            if (c.ligne) {
                for (png_uint_32 y = 0; y < h; ++y) {
                    png_read_row(c.png, c.ligne, nullptr);
                    const uint8_t* source = c.ligne;
                    uint8_t* sortie = Pixel(image, 0, (int)y);
                    for (png_uint_32 x = 0; x < l; ++x, source += 3, sortie += 3) {
                        sortie[0] = source[2];
                        sortie[1] = source[1];
                        sortie[2] = source[0];
                    }
                }
                bon = 1;
            }
        } else if (TailleImageAdmise(l, h)) {
            // Stored values as they are: no gamma, palettes and low depths
            // expanded, 16 bits cut to 8, always four bytes B G R A.
            png_set_expand(c.png);
            png_set_strip_16(c.png);
            png_set_gray_to_rgb(c.png);
            png_set_bgr(c.png);
            png_set_add_alpha(c.png, 0xFF, PNG_FILLER_AFTER);
            const int passes = png_set_interlace_handling(c.png);
            png_read_update_info(c.png, c.info);
            if (png_get_rowbytes(c.png, c.info) == (size_t)l * 4 && CreeImage(image, (int)l, (int)h, 24)) {
                const int tout = passes > 1;
                c.ligne = (uint8_t*)malloc((size_t)l * 4 * (tout ? h : 1));
                if (c.ligne && tout) {
                    c.lignes = (png_bytep*)malloc(sizeof(png_bytep) * h);
                    if (c.lignes) {
                        for (png_uint_32 y = 0; y < h; ++y) c.lignes[y] = c.ligne + (size_t)y * l * 4;
                        png_read_image(c.png, c.lignes);
                    }
                }
                if (c.ligne && (!tout || c.lignes)) {
                    for (png_uint_32 y = 0; y < h; ++y) {
                        uint8_t* source = c.ligne + (tout ? (size_t)y * l * 4 : 0);
                        if (!tout) png_read_row(c.png, source, nullptr);
                        uint8_t* sortie = Pixel(image, 0, (int)y);
                        for (png_uint_32 x = 0; x < l; ++x, source += 4, sortie += 3) {
                            if (source[3] == 0)
                                PoseRgb(sortie, transparent[0], transparent[1], transparent[2]);
                            else
                                memcpy(sortie, source, 3);
                        }
                    }
                    bon = 1;
                }
            }
        }
    }
    free(c.lignes);
    free(c.ligne);
    png_destroy_read_struct(&c.png, c.info ? &c.info : nullptr, nullptr);
    if (!bon) LibereImage(image);
    return bon;
}

struct ContextePngEcrit {
    png_structp png = nullptr;
    png_infop info = nullptr;
    FILE* f = nullptr;
    uint8_t* ligne = nullptr;
};

int EcritPng(FILE* f, const Image& image, int l, int h) {
    ContextePngEcrit c;
    c.f = f;
    c.png = png_create_write_struct(PNG_LIBPNG_VER_STRING, nullptr, PngErreur, PngAvertissement);
    c.info = c.png ? png_create_info_struct(c.png) : nullptr;
    c.ligne = (uint8_t*)malloc((size_t)l * 3);
    volatile int bon = 0;
    if (c.info && c.ligne && setjmp(png_jmpbuf(c.png)) == 0) {
        png_init_io(c.png, c.f);
        png_set_IHDR(c.png, c.info, (png_uint_32)l, (png_uint_32)h, 8, PNG_COLOR_TYPE_RGB, PNG_INTERLACE_NONE,
                     PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
        png_write_info(c.png, c.info);
        for (int y = 0; y < h; ++y) {
            LigneRgb(image, y, l, c.ligne);
            png_write_row(c.png, c.ligne);
        }
        png_write_end(c.png, c.info);
        bon = 1;
    }
    if (c.png) png_destroy_write_struct(&c.png, c.info ? &c.info : nullptr);
    free(c.ligne);
    return bon;
}
#endif

// ---- JPEG ------------------------------------------------------------------------

#ifdef TESS_JPEG
struct ErreurJpeg {
    jpeg_error_mgr base;
    jmp_buf saut;
};
void JpegSortie(j_common_ptr info) { longjmp(((ErreurJpeg*)info->err)->saut, 1); }
void JpegMessage(j_common_ptr) {}
// libjpeg stands grey in for scan data that ends too soon, at the end of the
// file or at a marker, and only warns: such a file fails instead.
void JpegAvis(j_common_ptr info, int niveau) {
    const int code = info->err->msg_code;
    // Once every row is out, a missing end marker costs nothing.
    const auto* d = (j_decompress_ptr)info;
    if (niveau < 0 && (code == JWRN_JPEG_EOF || code == JWRN_HIT_MARKER) && info->is_decompressor &&
        d->output_scanline < d->image_height)
        JpegSortie(info);
}

struct ContexteJpeg {
    jpeg_decompress_struct info;
    ErreurJpeg erreur;
    uint8_t* volatile ligne = nullptr;
};

int LitJpeg(const uint8_t* donnees, size_t taille, Image& image) {
    ContexteJpeg c{};
    c.info.err = jpeg_std_error(&c.erreur.base);
    c.erreur.base.error_exit = JpegSortie;
    c.erreur.base.output_message = JpegMessage;
    c.erreur.base.emit_message = JpegAvis;
    volatile int bon = 0;
    if (setjmp(c.erreur.saut) == 0) {
        jpeg_create_decompress(&c.info);
        c.info.mem->max_memory_to_use = 512L << 20;
        jpeg_mem_src(&c.info, donnees, (unsigned long)taille);
        jpeg_read_header(&c.info, TRUE);
        const J_COLOR_SPACE espace = c.info.jpeg_color_space;
        if (TailleImageAdmise(c.info.image_width, c.info.image_height) && espace != JCS_CMYK && espace != JCS_YCCK) {
            c.info.out_color_space = JCS_RGB;
            jpeg_start_decompress(&c.info);
            const int l = (int)c.info.output_width, h = (int)c.info.output_height;
            c.ligne = (uint8_t*)malloc((size_t)l * 3);
            if (c.info.output_components == 3 && c.ligne && CreeImage(image, l, h, 24)) {
                while ((int)c.info.output_scanline < h) {
                    const int y = (int)c.info.output_scanline;
                    JSAMPROW rangee = c.ligne;
                    jpeg_read_scanlines(&c.info, &rangee, 1);
                    uint8_t* sortie = Pixel(image, 0, y);
                    for (int x = 0; x < l; ++x) PoseRgb(sortie + 3 * x, c.ligne[3 * x], c.ligne[3 * x + 1], c.ligne[3 * x + 2]);
                }
                jpeg_finish_decompress(&c.info);
                bon = 1;
            }
        }
    }
    jpeg_destroy_decompress(&c.info);
    free(c.ligne);
    if (!bon) LibereImage(image);
    return bon;
}

struct ContexteJpegEcrit {
    jpeg_compress_struct info;
    ErreurJpeg erreur;
    FILE* f = nullptr;
    uint8_t* ligne = nullptr;
};

int EcritJpeg(FILE* f, const Image& image, int l, int h) {
    ContexteJpegEcrit c{};
    c.f = f;
    c.info.err = jpeg_std_error(&c.erreur.base);
    c.erreur.base.error_exit = JpegSortie;
    c.erreur.base.output_message = JpegMessage;
    c.ligne = (uint8_t*)malloc((size_t)l * 3);
    volatile int bon = 0;
    if (c.ligne && setjmp(c.erreur.saut) == 0) {
        jpeg_create_compress(&c.info);
        jpeg_stdio_dest(&c.info, c.f);
        c.info.image_width = (JDIMENSION)l;
        c.info.image_height = (JDIMENSION)h;
        c.info.input_components = 3;
        c.info.in_color_space = JCS_RGB;
        jpeg_set_defaults(&c.info);
        jpeg_set_quality(&c.info, 90, TRUE);
        jpeg_start_compress(&c.info, TRUE);
        for (int y = 0; y < h; ++y) {
            LigneRgb(image, y, l, c.ligne);
            JSAMPROW rangee = c.ligne;
            jpeg_write_scanlines(&c.info, &rangee, 1);
        }
        jpeg_finish_compress(&c.info);
        bon = 1;
    }
    jpeg_destroy_compress(&c.info);
    free(c.ligne);
    return bon;
}
#endif

// ---- GIF -------------------------------------------------------------------------

#ifdef TESS_GIF
int GifLit(GifFileType* gif, GifByteType* sortie, int n) {
    return (int)((LecteurMemoire*)gif->UserData)->Lit(sortie, n > 0 ? (size_t)n : 0);
}

// The first frame of a GIF on its logical screen. The screen outside the
// frame takes the transparent colour when the frame has one, else the
// screen's background colour.
int LitGif(const uint8_t* donnees, size_t taille, Image& image, const uint8_t transparent[3]) {
    LecteurMemoire m{donnees, taille, 0};
    int erreur = 0;
    GifFileType* gif = DGifOpen(&m, GifLit, &erreur);
    if (!gif) return 0;
    int bon = 0, indiceTransparent = -1;
    GifByteType* ligne = nullptr;
    for (;;) {
        GifRecordType type;
        if (DGifGetRecordType(gif, &type) == GIF_ERROR || type == TERMINATE_RECORD_TYPE) break;
        if (type == EXTENSION_RECORD_TYPE) {
            int code;
            GifByteType* extension;
            if (DGifGetExtension(gif, &code, &extension) == GIF_ERROR) break;
            if (code == GRAPHICS_EXT_FUNC_CODE && extension && extension[0] >= 4)
                indiceTransparent = (extension[1] & 1) ? extension[4] : -1;
            while (extension)
                if (DGifGetExtensionNext(gif, &extension) == GIF_ERROR) break;
            if (extension) break;
            continue;
        }
        if (type != IMAGE_DESC_RECORD_TYPE) continue;
        if (DGifGetImageDesc(gif) == GIF_ERROR) break;
        const GifImageDesc& cadre = gif->Image;
        const ColorMapObject* couleurs = cadre.ColorMap ? cadre.ColorMap : gif->SColorMap;
        int l = gif->SWidth, h = gif->SHeight;
        if (l <= 0 || h <= 0) {
            l = cadre.Width;
            h = cadre.Height;
        }
        if (!couleurs || !TailleImageAdmise(l, h) || !TailleImageAdmise(cadre.Width, cadre.Height)) break;
        if (!CreeImage(image, l, h, 24)) break;
        ligne = (GifByteType*)malloc((size_t)cadre.Width);
        if (!ligne) break;
        auto couleur = [&](int i, uint8_t* p) {
            if (i == indiceTransparent)
                PoseRgb(p, transparent[0], transparent[1], transparent[2]);
            else if (i < couleurs->ColorCount)
                PoseRgb(p, couleurs->Colors[i].Red, couleurs->Colors[i].Green, couleurs->Colors[i].Blue);
            else
                PoseRgb(p, 0, 0, 0);
        };
        const int fond = indiceTransparent >= 0 ? indiceTransparent : gif->SBackGroundColor;
        for (int y = 0; y < h; ++y)
            for (int x = 0; x < l; ++x) couleur(fond, Pixel(image, x, y));
        // Interlaced frames come in four passes.
        static const int depart[] = {0, 4, 2, 1}, saut[] = {8, 8, 4, 2};
        const int passes = cadre.Interlace ? 4 : 1;
        bool lu = true;
        for (int p = 0; p < passes && lu; ++p) {
            for (int y = cadre.Interlace ? depart[p] : 0; y < cadre.Height && lu; y += cadre.Interlace ? saut[p] : 1) {
                if (DGifGetLine(gif, ligne, cadre.Width) == GIF_ERROR) {
                    lu = false;
                    break;
                }
                const int yy = cadre.Top + y;
                if (yy < 0 || yy >= h) continue;
                for (int x = 0; x < cadre.Width; ++x) {
                    const int xx = cadre.Left + x;
                    if (xx >= 0 && xx < l) couleur(ligne[x], Pixel(image, xx, yy));
                }
            }
        }
        bon = lu;
        break;
    }
    free(ligne);
    DGifCloseFile(gif, &erreur);
    if (!bon) LibereImage(image);
    return bon;
}

int EcritGif(FILE* f, const Image& image, int l, int h) {
    // Exact colours when there are at most 256 of them, else a 6 x 7 x 6 cube.
    GifColorType table[256] = {};
    int nombre = 0;
    uint8_t* indices = (uint8_t*)malloc((size_t)l * h);
    if (!indices) return 0;
    bool exact = true;
    for (int y = 0; y < h && exact; ++y) {
        const uint8_t* s = Pixel(image, 0, y);
        for (int x = 0; x < l && exact; ++x, s += 3) {
            int i = 0;
            while (i < nombre && !(table[i].Blue == s[0] && table[i].Green == s[1] && table[i].Red == s[2])) ++i;
            if (i == nombre) {
                if (nombre == 256) {
                    exact = false;
                    break;
                }
                table[nombre++] = GifColorType{s[2], s[1], s[0]};
            }
            indices[(size_t)y * l + x] = (uint8_t)i;
        }
    }
    if (!exact) {
        nombre = 252;
        for (int i = 0; i < nombre; ++i)
            table[i] = GifColorType{(GifByteType)(i / 42 * 51), (GifByteType)(i / 6 % 7 * 255 / 6), (GifByteType)(i % 6 * 51)};
        for (int y = 0; y < h; ++y) {
            const uint8_t* s = Pixel(image, 0, y);
            for (int x = 0; x < l; ++x, s += 3)
                indices[(size_t)y * l + x] = (uint8_t)((s[2] + 25) / 51 * 42 + (s[1] * 6 + 127) / 255 * 6 + (s[0] + 25) / 51);
        }
        nombre = 256;
    }
    int taillePalette = 2;
    while (taillePalette < nombre) taillePalette *= 2;
    int erreur = 0, bon = 0;
    const int fd = Descripteur(f);
    GifFileType* gif = fd >= 0 ? EGifOpenFileHandle(fd, &erreur) : nullptr;
    if (!gif && fd >= 0) close(fd);
    ColorMapObject* carte = GifMakeMapObject(taillePalette, table);
    if (gif && carte) {
        bon = EGifPutScreenDesc(gif, l, h, 8, 0, carte) != GIF_ERROR &&
              EGifPutImageDesc(gif, 0, 0, l, h, false, nullptr) != GIF_ERROR;
        for (int y = 0; y < h && bon; ++y)
            bon = EGifPutLine(gif, indices + (size_t)y * l, l) != GIF_ERROR;
    }
    if (carte) GifFreeMapObject(carte);
    if (gif && EGifCloseFile(gif, &erreur) == GIF_ERROR) bon = 0;
    free(indices);
    return bon;
}
#endif

// ---- TIFF ------------------------------------------------------------------------

#ifdef TESS_TIFF
tmsize_t TiffLit(thandle_t h, void* sortie, tmsize_t n) {
    return n > 0 ? (tmsize_t)((LecteurMemoire*)h)->Lit(sortie, (size_t)n) : 0;
}
tmsize_t TiffEcrit(thandle_t, void*, tmsize_t) { return 0; }
toff_t TiffCherche(thandle_t h, toff_t decalage, int depuis) {
    auto* m = (LecteurMemoire*)h;
    uint64_t base = depuis == SEEK_SET ? 0 : depuis == SEEK_CUR ? m->position : m->taille;
    uint64_t cible = base + decalage;
    if (cible > m->taille) cible = m->taille;
    m->position = (size_t)cible;
    return (toff_t)cible;
}
int TiffFerme(thandle_t) { return 0; }
toff_t TiffTaille(thandle_t h) { return ((LecteurMemoire*)h)->taille; }

void TiffSilence() {
    TIFFSetErrorHandler(nullptr);
    TIFFSetWarningHandler(nullptr);
}

int LitTiff(const uint8_t* donnees, size_t taille, Image& image, const uint8_t transparent[3]) {
    TiffSilence();
    LecteurMemoire m{donnees, taille, 0};
    TIFF* tif = TIFFClientOpen("image", "rm", &m, TiffLit, TiffEcrit, TiffCherche, TiffFerme, TiffTaille, nullptr,
                               nullptr);
    if (!tif) return 0;
    uint32_t l = 0, h = 0;
    int bon = 0;
    TIFFGetField(tif, TIFFTAG_IMAGEWIDTH, &l);
    TIFFGetField(tif, TIFFTAG_IMAGELENGTH, &h);
    uint32_t* trame = nullptr;
    if (TailleImageAdmise(l, h) && (trame = (uint32_t*)malloc((size_t)l * h * 4)) != nullptr &&
        TIFFReadRGBAImageOriented(tif, l, h, trame, ORIENTATION_TOPLEFT, 1) && CreeImage(image, (int)l, (int)h, 24)) {
        for (uint32_t y = 0; y < h; ++y) {
            uint8_t* sortie = Pixel(image, 0, (int)y);
            const uint32_t* source = trame + (size_t)y * l;
            for (uint32_t x = 0; x < l; ++x, sortie += 3) {
                const uint32_t p = source[x];
                if (TIFFGetA(p) == 0)
                    PoseRgb(sortie, transparent[0], transparent[1], transparent[2]);
                else
                    PoseRgb(sortie, (uint8_t)TIFFGetR(p), (uint8_t)TIFFGetG(p), (uint8_t)TIFFGetB(p));
            }
        }
        bon = 1;
    }
    free(trame);
    TIFFClose(tif);
    return bon;
}

int EcritTiff(FILE* f, const Image& image, int l, int h) {
    TiffSilence();
    const int fd = Descripteur(f);
    if (fd < 0) return 0;
    TIFF* tif = TIFFFdOpen(fd, "image", "w");
    if (!tif) {
        close(fd);
        return 0;
    }
    uint8_t* ligne = (uint8_t*)malloc((size_t)l * 3);
    int bon = ligne != nullptr;
    TIFFSetField(tif, TIFFTAG_IMAGEWIDTH, (uint32_t)l);
    TIFFSetField(tif, TIFFTAG_IMAGELENGTH, (uint32_t)h);
    TIFFSetField(tif, TIFFTAG_SAMPLESPERPIXEL, 3);
    TIFFSetField(tif, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(tif, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(tif, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(tif, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(tif, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(tif, 0));
    for (int y = 0; y < h && bon; ++y) {
        LigneRgb(image, y, l, ligne);
        bon = TIFFWriteScanline(tif, ligne, (uint32_t)y, 0) == 1;
    }
    TIFFClose(tif);
    free(ligne);
    return bon;
}
#endif

bool Commence(const uint8_t* d, size_t n, const char* signature, size_t longueur) {
    return n >= longueur && memcmp(d, signature, longueur) == 0;
}

} // namespace

bool CodecsDisponibles() {
#if defined(TESS_PNG) || defined(TESS_JPEG) || defined(TESS_GIF) || defined(TESS_TIFF)
    return true;
#else
    return false;
#endif
}

namespace {

enum TypeImage { IMAGE_INCONNUE, IMAGE_BMP, IMAGE_PNG, IMAGE_JPEG, IMAGE_GIF, IMAGE_TIFF };

// The type the first bytes announce, among those built in.
TypeImage Reconnait(const uint8_t* d, size_t n) {
    if (!d) return IMAGE_INCONNUE;
    if (Commence(d, n, "BM", 2)) return IMAGE_BMP;
#ifdef TESS_PNG
    if (Commence(d, n, "\x89PNG\r\n\x1a\n", 8)) return IMAGE_PNG;
#endif
#ifdef TESS_JPEG
    if (Commence(d, n, "\xFF\xD8\xFF", 3)) return IMAGE_JPEG;
#endif
#ifdef TESS_GIF
    if (Commence(d, n, "GIF87a", 6) || Commence(d, n, "GIF89a", 6)) return IMAGE_GIF;
#endif
#ifdef TESS_TIFF
    if (Commence(d, n, "II*\0", 4) || Commence(d, n, "MM\0*", 4)) return IMAGE_TIFF;
#endif
    return IMAGE_INCONNUE;
}

} // namespace

bool TypeImageConnu(const uint8_t* donnees, size_t taille) { return Reconnait(donnees, taille) != IMAGE_INCONNUE; }

int LitImageMemoire(const uint8_t* d, size_t n, Image& image, int& bitsFichier, const uint8_t transparent[3]) {
    LibereImage(image);
    int bon = 0;
    switch (Reconnait(d, n)) {
    case IMAGE_BMP:
        return LitBmp(d, n, image, bitsFichier);
#ifdef TESS_PNG
    case IMAGE_PNG:
        bon = LitPng(d, n, image, transparent);
        break;
#endif
#ifdef TESS_JPEG
    case IMAGE_JPEG:
        bon = LitJpeg(d, n, image);
        break;
#endif
#ifdef TESS_GIF
    case IMAGE_GIF:
        bon = LitGif(d, n, image, transparent);
        break;
#endif
#ifdef TESS_TIFF
    case IMAGE_TIFF:
        bon = LitTiff(d, n, image, transparent);
        break;
#endif
    default:
        break;
    }
    (void)transparent;
    if (bon) bitsFichier = 24;
    return bon;
}

int EcritImageType(const char* chemin, const char* mime, const Image& image, int largeur, int hauteur) {
    if (!mime) return 0;
    EcrivainImage ecrit = nullptr;
    if (strcmp(mime, "image/bmp") == 0) ecrit = EcritBmpFlux;
#ifdef TESS_PNG
    if (strcmp(mime, "image/png") == 0) ecrit = EcritPng;
#endif
#ifdef TESS_JPEG
    if (strcmp(mime, "image/jpeg") == 0) ecrit = EcritJpeg;
#endif
#ifdef TESS_GIF
    if (strcmp(mime, "image/gif") == 0) ecrit = EcritGif;
#endif
#ifdef TESS_TIFF
    if (strcmp(mime, "image/tiff") == 0) ecrit = EcritTiff;
#endif
    return ecrit ? EcritImageSure(chemin, ecrit, image, largeur, hauteur) : 0;
}
