#pragma once

#include "databaseservice/drivedatatable.h"
#include "databaseservice/userproperties.h"

#include <algorithm>
#include <array>
#include <cstddef>
#include <cstdint>
#include <string_view>

/// Constants that the client's parts share: what a file's name tells about the file, the paths of icons, albums and
/// requests, and the names of settings. The library itself reads none of them. Everything here is constant from before
/// the first to after the last line of the program, and may be used from any thread.
namespace DatabaseService::ClientConstants {

// --- Mime types that no extension stands for ----------------------------------------------------------------------

/// Of folders.
inline constexpr std::string_view folderMimeType = DriveDataTable::folderMimeType;
/// Of a file about which nothing is known.
inline constexpr std::string_view unknownMimeType = "application/octet-stream";
///@{
/// Of entries of a file system that are neither files nor folders.
inline constexpr std::string_view linkMimeType = "inode/symlink";
inline constexpr std::string_view fifoMimeType = "inode/fifo";
inline constexpr std::string_view socketMimeType = "inode/socket";
inline constexpr std::string_view blockDeviceMimeType = "inode/blockdevice";
inline constexpr std::string_view characterDeviceMimeType = "inode/chardevice";
///@}

// --- Extensions ---------------------------------------------------------------------------------------------------

/// Kinds of files, by extension. The numbers are stored as sort keys: never change one, like kinds stand together.
enum class ExtensionGroup : std::int32_t {
    Unknown = 0,
    Picture = 10,
    RawPhoto = 11,
    Video = 20,
    Audio = 30,
    Document = 40,
    Spreadsheet = 41,
    Presentation = 42,
    Archive = 50,
    Code = 60,
    Font = 70,
    Data = 80,
    System = 90,
};

/// An extension in lower case without its dot, and what it stands for.
struct KnownExtension {
    std::string_view extension; ///< in lower case, without a dot
    std::string_view mimeType;  ///< never empty
    ExtensionGroup group;       ///< never `Unknown`
};

/// Sorted by extension.
inline constexpr auto knownExtensions = std::to_array<KnownExtension>({
    {"3ds", "image/x-3ds", ExtensionGroup::Data},
    {"3fr", "image/x-hasselblad-3fr", ExtensionGroup::RawPhoto},
    {"3g2", "video/3gpp2", ExtensionGroup::Video},
    {"3ga", "audio/3gpp", ExtensionGroup::Audio},
    {"3gp", "video/3gpp", ExtensionGroup::Video},
    {"3gpp", "video/3gpp", ExtensionGroup::Video},
    {"3gpp2", "video/3gpp2", ExtensionGroup::Video},
    {"3mf", "model/3mf", ExtensionGroup::Data},
    {"7z", "application/x-7z-compressed", ExtensionGroup::Archive},
    {"a", "application/x-archive", ExtensionGroup::Code},
    {"aab", "application/zip", ExtensionGroup::Archive},
    {"aac", "audio/aac", ExtensionGroup::Audio},
    {"aax", "audio/vnd.audible.aax", ExtensionGroup::Audio},
    {"abw", "application/x-abiword", ExtensionGroup::Document},
    {"ac3", "audio/ac3", ExtensionGroup::Audio},
    {"accdb", "application/vnd.ms-access", ExtensionGroup::Data},
    {"ace", "application/x-ace", ExtensionGroup::Archive},
    {"adb", "text/x-adasrc", ExtensionGroup::Code},
    {"adoc", "text/asciidoc", ExtensionGroup::Document},
    {"ads", "text/x-adasrc", ExtensionGroup::Code},
    {"afm", "application/x-font-afm", ExtensionGroup::Font},
    {"ai", "application/postscript", ExtensionGroup::Picture},
    {"aif", "audio/x-aiff", ExtensionGroup::Audio},
    {"aifc", "audio/x-aiff", ExtensionGroup::Audio},
    {"aiff", "audio/x-aiff", ExtensionGroup::Audio},
    {"amr", "audio/AMR", ExtensionGroup::Audio},
    {"ape", "audio/x-ape", ExtensionGroup::Audio},
    {"apk", "application/vnd.android.package-archive", ExtensionGroup::Archive},
    {"apng", "image/apng", ExtensionGroup::Picture},
    {"appimage", "application/vnd.appimage", ExtensionGroup::Archive},
    {"appx", "application/zip", ExtensionGroup::Archive},
    {"arj", "application/x-arj", ExtensionGroup::Archive},
    {"arw", "image/x-sony-arw", ExtensionGroup::RawPhoto},
    {"asc", "text/plain", ExtensionGroup::Document},
    {"asciidoc", "text/asciidoc", ExtensionGroup::Document},
    {"asf", "application/vnd.ms-asf", ExtensionGroup::Video},
    {"asm", "text/x-asm", ExtensionGroup::Code},
    {"asp", "application/x-asp", ExtensionGroup::Code},
    {"aspx", "application/x-asp", ExtensionGroup::Code},
    {"ass", "text/x-ssa", ExtensionGroup::Document},
    {"atom", "application/atom+xml", ExtensionGroup::Data},
    {"au", "audio/basic", ExtensionGroup::Audio},
    {"avi", "video/x-msvideo", ExtensionGroup::Video},
    {"avif", "image/avif", ExtensionGroup::Picture},
    {"avifs", "image/avif", ExtensionGroup::Picture},
    {"avro", "application/avro", ExtensionGroup::Data},
    {"awk", "application/x-awk", ExtensionGroup::Code},
    {"azw", "application/vnd.amazon.ebook", ExtensionGroup::Document},
    {"azw3", "application/vnd.amazon.mobi8-ebook", ExtensionGroup::Document},
    {"bak", "application/x-trash", ExtensionGroup::System},
    {"bas", "text/x-basic", ExtensionGroup::Code},
    {"bash", "application/x-sh", ExtensionGroup::Code},
    {"bat", "application/x-msdos-program", ExtensionGroup::Code},
    {"bdf", "application/x-font-bdf", ExtensionGroup::Font},
    {"bib", "text/x-bibtex", ExtensionGroup::Document},
    {"bin", "application/octet-stream", ExtensionGroup::System},
    {"blend", "application/x-blender", ExtensionGroup::Data},
    {"blender", "application/x-blender", ExtensionGroup::Data},
    {"bmp", "image/bmp", ExtensionGroup::Picture},
    {"br", "application/x-brotli", ExtensionGroup::Archive},
    {"bz", "application/x-bzip", ExtensionGroup::Archive},
    {"bz2", "application/x-bzip", ExtensionGroup::Archive},
    {"c", "text/x-csrc", ExtensionGroup::Code},
    {"cab", "application/vnd.ms-cab-compressed", ExtensionGroup::Archive},
    {"caf", "audio/x-caf", ExtensionGroup::Audio},
    {"cbr", "application/vnd.comicbook-rar", ExtensionGroup::Document},
    {"cbz", "application/vnd.comicbook+zip", ExtensionGroup::Document},
    {"cc", "text/x-c++src", ExtensionGroup::Code},
    {"cdr", "application/vnd.corel-draw", ExtensionGroup::Picture},
    {"cer", "application/pkix-cert", ExtensionGroup::Data},
    {"cfg", "text/plain", ExtensionGroup::Data},
    {"chm", "application/vnd.ms-htmlhelp", ExtensionGroup::Document},
    {"cjs", "text/javascript", ExtensionGroup::Code},
    {"class", "application/java-vm", ExtensionGroup::Code},
    {"clj", "text/x-clojure", ExtensionGroup::Code},
    {"cljs", "text/x-clojure", ExtensionGroup::Code},
    {"cmake", "text/x-cmake", ExtensionGroup::Code},
    {"cmd", "application/x-msdos-program", ExtensionGroup::Code},
    {"coffee", "application/vnd.coffeescript", ExtensionGroup::Code},
    {"com", "application/x-msdos-program", ExtensionGroup::System},
    {"conf", "text/plain", ExtensionGroup::Data},
    {"config", "text/plain", ExtensionGroup::Data},
    {"core", "application/x-core", ExtensionGroup::System},
    {"cpio", "application/x-cpio", ExtensionGroup::Archive},
    {"cpp", "text/x-c++src", ExtensionGroup::Code},
    {"cpt", "image/x-corelphotopaint", ExtensionGroup::Picture},
    {"cr2", "image/x-canon-cr2", ExtensionGroup::RawPhoto},
    {"cr3", "image/x-canon-cr3", ExtensionGroup::RawPhoto},
    {"crdownload", "application/x-partial-download", ExtensionGroup::System},
    {"crl", "application/pkix-crl", ExtensionGroup::Data},
    {"crt", "application/x-x509-ca-cert", ExtensionGroup::Data},
    {"crw", "image/x-canon-crw", ExtensionGroup::RawPhoto},
    {"crx", "application/x-chrome-extension", ExtensionGroup::Archive},
    {"cs", "text/x-csharp", ExtensionGroup::Code},
    {"csh", "application/x-csh", ExtensionGroup::Code},
    {"csr", "application/pkcs10", ExtensionGroup::Data},
    {"css", "text/css", ExtensionGroup::Code},
    {"csv", "text/csv", ExtensionGroup::Spreadsheet},
    {"cu", "text/x-csrc", ExtensionGroup::Code},
    {"cue", "application/x-cue", ExtensionGroup::Audio},
    {"cur", "image/x-win-bitmap", ExtensionGroup::Picture},
    {"cxx", "text/x-c++src", ExtensionGroup::Code},
    {"d", "text/x-dsrc", ExtensionGroup::Code},
    {"dae", "model/vnd.collada+xml", ExtensionGroup::Data},
    {"dart", "text/x-dart", ExtensionGroup::Code},
    {"db3", "application/vnd.sqlite3", ExtensionGroup::Data},
    {"dbf", "application/vnd.dbf", ExtensionGroup::Spreadsheet},
    {"dcr", "image/x-kodak-dcr", ExtensionGroup::RawPhoto},
    {"dds", "image/x-dds", ExtensionGroup::Picture},
    {"deb", "application/vnd.debian.binary-package", ExtensionGroup::Archive},
    {"der", "application/x-x509-ca-cert", ExtensionGroup::Data},
    {"desktop", "application/x-desktop", ExtensionGroup::System},
    {"dib", "image/bmp", ExtensionGroup::Picture},
    {"diff", "text/x-diff", ExtensionGroup::Code},
    {"divx", "video/x-msvideo", ExtensionGroup::Video},
    {"djv", "image/vnd.djvu", ExtensionGroup::Picture},
    {"djvu", "image/vnd.djvu", ExtensionGroup::Picture},
    {"dll", "application/x-msdos-program", ExtensionGroup::System},
    {"dmg", "application/x-apple-diskimage", ExtensionGroup::Archive},
    {"dng", "image/x-adobe-dng", ExtensionGroup::RawPhoto},
    {"doc", "application/msword", ExtensionGroup::Document},
    {"docm", "application/vnd.ms-word.document.macroEnabled.12", ExtensionGroup::Document},
    {"docx", "application/vnd.openxmlformats-officedocument.wordprocessingml.document", ExtensionGroup::Document},
    {"dot", "application/msword", ExtensionGroup::Document},
    {"dotm", "application/vnd.ms-word.template.macroEnabled.12", ExtensionGroup::Document},
    {"dotx", "application/vnd.openxmlformats-officedocument.wordprocessingml.template", ExtensionGroup::Document},
    {"dsf", "audio/x-dsf", ExtensionGroup::Audio},
    {"dtd", "application/xml-dtd", ExtensionGroup::Data},
    {"dts", "audio/vnd.dts", ExtensionGroup::Audio},
    {"dv", "video/dv", ExtensionGroup::Video},
    {"dvi", "application/x-dvi", ExtensionGroup::Document},
    {"dwf", "model/vnd.dwf", ExtensionGroup::Data},
    {"dwg", "image/vnd.dwg", ExtensionGroup::Data},
    {"dxf", "image/vnd.dxf", ExtensionGroup::Data},
    {"dylib", "application/x-sharedlib", ExtensionGroup::System},
    {"eac3", "audio/eac3", ExtensionGroup::Audio},
    {"ear", "application/java-archive", ExtensionGroup::Archive},
    {"efi", "application/efi", ExtensionGroup::System},
    {"el", "text/x-emacs-lisp", ExtensionGroup::Code},
    {"elf", "application/x-executable", ExtensionGroup::System},
    {"emf", "image/emf", ExtensionGroup::Picture},
    {"eml", "message/rfc822", ExtensionGroup::Document},
    {"env", "text/plain", ExtensionGroup::Data},
    {"eot", "application/vnd.ms-fontobject", ExtensionGroup::Font},
    {"eps", "application/postscript", ExtensionGroup::Picture},
    {"epsf", "application/postscript", ExtensionGroup::Picture},
    {"epsi", "application/postscript", ExtensionGroup::Picture},
    {"epub", "application/epub+zip", ExtensionGroup::Document},
    {"erb", "application/x-ruby", ExtensionGroup::Code},
    {"erf", "image/x-epson-erf", ExtensionGroup::RawPhoto},
    {"erl", "text/x-erlang", ExtensionGroup::Code},
    {"ex", "text/x-elixir", ExtensionGroup::Code},
    {"exe", "application/x-msdos-program", ExtensionGroup::System},
    {"exr", "image/x-exr", ExtensionGroup::Picture},
    {"exs", "text/x-elixir", ExtensionGroup::Code},
    {"f", "text/x-fortran", ExtensionGroup::Code},
    {"f4v", "video/mp4", ExtensionGroup::Video},
    {"f90", "text/x-fortran", ExtensionGroup::Code},
    {"f95", "text/x-fortran", ExtensionGroup::Code},
    {"fasta", "text/x-fasta", ExtensionGroup::Data},
    {"fb2", "application/x-fictionbook+xml", ExtensionGroup::Document},
    {"fff", "image/x-hasselblad-fff", ExtensionGroup::RawPhoto},
    {"fig", "image/x-xfig", ExtensionGroup::Picture},
    {"fish", "application/x-sh", ExtensionGroup::Code},
    {"fit", "image/fits", ExtensionGroup::Picture},
    {"fits", "image/fits", ExtensionGroup::Picture},
    {"flac", "audio/flac", ExtensionGroup::Audio},
    {"flatpak", "application/vnd.flatpak", ExtensionGroup::Archive},
    {"flv", "video/x-flv", ExtensionGroup::Video},
    {"fodp", "application/vnd.oasis.opendocument.presentation-flat-xml", ExtensionGroup::Presentation},
    {"fods", "application/vnd.oasis.opendocument.spreadsheet-flat-xml", ExtensionGroup::Spreadsheet},
    {"fodt", "application/vnd.oasis.opendocument.text-flat-xml", ExtensionGroup::Document},
    {"fon", "application/x-font", ExtensionGroup::Font},
    {"for", "text/x-fortran", ExtensionGroup::Code},
    {"fs", "text/x-fsharp", ExtensionGroup::Code},
    {"fsx", "text/x-fsharp", ExtensionGroup::Code},
    {"gcode", "text/x.gcode", ExtensionGroup::Data},
    {"ged", "text/vnd.familysearch.gedcom", ExtensionGroup::Data},
    {"gedcom", "text/vnd.familysearch.gedcom", ExtensionGroup::Data},
    {"gem", "application/x-tar", ExtensionGroup::Archive},
    {"geojson", "application/geo+json", ExtensionGroup::Data},
    {"gif", "image/gif", ExtensionGroup::Picture},
    {"glb", "model/gltf-binary", ExtensionGroup::Data},
    {"gltf", "model/gltf+json", ExtensionGroup::Data},
    {"gml", "application/gml+xml", ExtensionGroup::Data},
    {"gmo", "application/x-gettext-translation", ExtensionGroup::Code},
    {"gnumeric", "application/x-gnumeric", ExtensionGroup::Spreadsheet},
    {"go", "text/x-go", ExtensionGroup::Code},
    {"gpg", "application/pgp-encrypted", ExtensionGroup::Data},
    {"gpkg", "application/geopackage+sqlite3", ExtensionGroup::Data},
    {"gpx", "application/gpx+xml", ExtensionGroup::Data},
    {"gradle", "text/x-gradle", ExtensionGroup::Code},
    {"graphql", "application/graphql", ExtensionGroup::Code},
    {"groovy", "text/x-groovy", ExtensionGroup::Code},
    {"gz", "application/gzip", ExtensionGroup::Archive},
    {"h", "text/x-chdr", ExtensionGroup::Code},
    {"h264", "video/h264", ExtensionGroup::Video},
    {"h5", "application/x-hdf", ExtensionGroup::Data},
    {"har", "application/json", ExtensionGroup::Data},
    {"hdf", "application/x-hdf", ExtensionGroup::Data},
    {"hdf5", "application/x-hdf", ExtensionGroup::Data},
    {"hdr", "image/vnd.radiance", ExtensionGroup::Picture},
    {"heic", "image/heic", ExtensionGroup::Picture},
    {"heics", "image/heic-sequence", ExtensionGroup::Picture},
    {"heif", "image/heif", ExtensionGroup::Picture},
    {"heifs", "image/heif-sequence", ExtensionGroup::Picture},
    {"hevc", "video/h265", ExtensionGroup::Video},
    {"hh", "text/x-c++hdr", ExtensionGroup::Code},
    {"hif", "image/heif", ExtensionGroup::Picture},
    {"hlp", "application/winhlp", ExtensionGroup::Document},
    {"hpp", "text/x-c++hdr", ExtensionGroup::Code},
    {"hqx", "application/mac-binhex40", ExtensionGroup::Archive},
    {"hs", "text/x-haskell", ExtensionGroup::Code},
    {"htc", "text/x-component", ExtensionGroup::Code},
    {"htm", "text/html", ExtensionGroup::Document},
    {"html", "text/html", ExtensionGroup::Document},
    {"hwp", "application/x-hwp", ExtensionGroup::Document},
    {"hwpx", "application/hwp+zip", ExtensionGroup::Document},
    {"hxx", "text/x-c++hdr", ExtensionGroup::Code},
    {"icns", "image/x-icns", ExtensionGroup::Picture},
    {"ico", "image/vnd.microsoft.icon", ExtensionGroup::Picture},
    {"ics", "text/calendar", ExtensionGroup::Document},
    {"idl", "text/x-idl", ExtensionGroup::Code},
    {"iges", "model/iges", ExtensionGroup::Data},
    {"igs", "model/iges", ExtensionGroup::Data},
    {"iiq", "image/x-phaseone-iiq", ExtensionGroup::RawPhoto},
    {"img", "application/x-raw-disk-image", ExtensionGroup::Archive},
    {"indd", "application/x-indesign", ExtensionGroup::Picture},
    {"inf", "text/plain", ExtensionGroup::System},
    {"ini", "text/plain", ExtensionGroup::Data},
    {"ino", "text/x-c++src", ExtensionGroup::Code},
    {"ipa", "application/zip", ExtensionGroup::Archive},
    {"ipynb", "application/x-ipynb+json", ExtensionGroup::Code},
    {"iso", "application/x-iso9660-image", ExtensionGroup::Archive},
    {"it", "audio/x-it", ExtensionGroup::Audio},
    {"j2k", "image/x-jp2-codestream", ExtensionGroup::Picture},
    {"jar", "application/java-archive", ExtensionGroup::Archive},
    {"java", "text/x-java", ExtensionGroup::Code},
    {"jfif", "image/jpeg", ExtensionGroup::Picture},
    {"jks", "application/x-java-keystore", ExtensionGroup::Data},
    {"jl", "text/x-julia", ExtensionGroup::Code},
    {"jp2", "image/jp2", ExtensionGroup::Picture},
    {"jpe", "image/jpeg", ExtensionGroup::Picture},
    {"jpeg", "image/jpeg", ExtensionGroup::Picture},
    {"jpf", "image/jpx", ExtensionGroup::Picture},
    {"jpg", "image/jpeg", ExtensionGroup::Picture},
    {"jpm", "image/jpm", ExtensionGroup::Picture},
    {"js", "text/javascript", ExtensionGroup::Code},
    {"json", "application/json", ExtensionGroup::Data},
    {"json5", "application/json5", ExtensionGroup::Data},
    {"jsonl", "application/jsonl", ExtensionGroup::Data},
    {"jsonld", "application/ld+json", ExtensionGroup::Data},
    {"jsp", "text/x-jsp", ExtensionGroup::Code},
    {"jsx", "text/javascript", ExtensionGroup::Code},
    {"jxl", "image/jxl", ExtensionGroup::Picture},
    {"jxr", "image/jxr", ExtensionGroup::Picture},
    {"kdbx", "application/x-keepass2", ExtensionGroup::Data},
    {"kdc", "image/x-kodak-kdc", ExtensionGroup::RawPhoto},
    {"key", "application/vnd.apple.keynote", ExtensionGroup::Presentation},
    {"kml", "application/vnd.google-earth.kml+xml", ExtensionGroup::Data},
    {"kmz", "application/vnd.google-earth.kmz", ExtensionGroup::Data},
    {"ko", "application/x-object", ExtensionGroup::System},
    {"kra", "application/x-krita", ExtensionGroup::Picture},
    {"ksh", "application/x-sh", ExtensionGroup::Code},
    {"kt", "text/x-kotlin", ExtensionGroup::Code},
    {"kts", "text/x-kotlin", ExtensionGroup::Code},
    {"ldif", "text/x-ldif", ExtensionGroup::Data},
    {"less", "text/css", ExtensionGroup::Code},
    {"lha", "application/x-lha", ExtensionGroup::Archive},
    {"lib", "application/x-archive", ExtensionGroup::Code},
    {"lisp", "text/x-common-lisp", ExtensionGroup::Code},
    {"lnk", "application/x-ms-shortcut", ExtensionGroup::System},
    {"lock", "text/plain", ExtensionGroup::Data},
    {"log", "text/x-log", ExtensionGroup::Document},
    {"lrc", "text/plain", ExtensionGroup::Document},
    {"lua", "text/x-lua", ExtensionGroup::Code},
    {"lyx", "application/x-lyx", ExtensionGroup::Document},
    {"lz", "application/x-lzip", ExtensionGroup::Archive},
    {"lz4", "application/x-lz4", ExtensionGroup::Archive},
    {"lzh", "application/x-lha", ExtensionGroup::Archive},
    {"lzma", "application/x-lzma", ExtensionGroup::Archive},
    {"lzo", "application/x-lzop", ExtensionGroup::Archive},
    {"m", "text/x-objcsrc", ExtensionGroup::Code},
    {"m2ts", "video/mp2t", ExtensionGroup::Video},
    {"m2v", "video/mpeg", ExtensionGroup::Video},
    {"m3u", "audio/x-mpegurl", ExtensionGroup::Audio},
    {"m3u8", "application/vnd.apple.mpegurl", ExtensionGroup::Audio},
    {"m4", "application/x-m4", ExtensionGroup::Code},
    {"m4a", "audio/mp4", ExtensionGroup::Audio},
    {"m4b", "audio/x-m4b", ExtensionGroup::Audio},
    {"m4r", "audio/x-m4r", ExtensionGroup::Audio},
    {"m4v", "video/mp4", ExtensionGroup::Video},
    {"mak", "text/x-makefile", ExtensionGroup::Code},
    {"map", "application/json", ExtensionGroup::Data},
    {"markdown", "text/markdown", ExtensionGroup::Document},
    {"mat", "application/x-matlab-data", ExtensionGroup::Data},
    {"mbox", "application/mbox", ExtensionGroup::Document},
    {"mbtiles", "application/vnd.sqlite3", ExtensionGroup::Data},
    {"md", "text/markdown", ExtensionGroup::Document},
    {"md5", "text/plain", ExtensionGroup::Data},
    {"mdb", "application/vnd.ms-access", ExtensionGroup::Data},
    {"mef", "image/x-mamiya-mef", ExtensionGroup::RawPhoto},
    {"mht", "multipart/related", ExtensionGroup::Document},
    {"mhtml", "multipart/related", ExtensionGroup::Document},
    {"mid", "audio/midi", ExtensionGroup::Audio},
    {"midi", "audio/midi", ExtensionGroup::Audio},
    {"mjs", "text/javascript", ExtensionGroup::Code},
    {"mk", "text/x-makefile", ExtensionGroup::Code},
    {"mka", "audio/x-matroska", ExtensionGroup::Audio},
    {"mkv", "video/x-matroska", ExtensionGroup::Video},
    {"ml", "text/x-ocaml", ExtensionGroup::Code},
    {"mli", "text/x-ocaml", ExtensionGroup::Code},
    {"mm", "text/x-objc++src", ExtensionGroup::Code},
    {"mng", "video/x-mng", ExtensionGroup::Picture},
    {"mo", "application/x-gettext-translation", ExtensionGroup::Code},
    {"mobi", "application/x-mobipocket-ebook", ExtensionGroup::Document},
    {"mod", "audio/x-mod", ExtensionGroup::Audio},
    {"mol", "chemical/x-mdl-molfile", ExtensionGroup::Data},
    {"mos", "image/x-leaf-mos", ExtensionGroup::RawPhoto},
    {"mov", "video/quicktime", ExtensionGroup::Video},
    {"mp+", "audio/x-musepack", ExtensionGroup::Audio},
    {"mp1", "audio/mpeg", ExtensionGroup::Audio},
    {"mp2", "audio/mpeg", ExtensionGroup::Audio},
    {"mp3", "audio/mpeg", ExtensionGroup::Audio},
    {"mp4", "video/mp4", ExtensionGroup::Video},
    {"mp4v", "video/mp4", ExtensionGroup::Video},
    {"mpc", "audio/x-musepack", ExtensionGroup::Audio},
    {"mpe", "video/mpeg", ExtensionGroup::Video},
    {"mpeg", "video/mpeg", ExtensionGroup::Video},
    {"mpg", "video/mpeg", ExtensionGroup::Video},
    {"mpga", "audio/mpeg", ExtensionGroup::Audio},
    {"mpp", "application/vnd.ms-project", ExtensionGroup::Audio},
    {"mpt", "application/vnd.ms-project", ExtensionGroup::Document},
    {"mrw", "image/x-minolta-mrw", ExtensionGroup::RawPhoto},
    {"msg", "application/vnd.ms-outlook", ExtensionGroup::Document},
    {"msi", "application/x-msi", ExtensionGroup::Archive},
    {"msix", "application/zip", ExtensionGroup::Archive},
    {"mtl", "model/mtl", ExtensionGroup::Data},
    {"mts", "video/mp2t", ExtensionGroup::Video},
    {"mxf", "application/mxf", ExtensionGroup::Video},
    {"nc", "application/x-netcdf", ExtensionGroup::Data},
    {"ncx", "application/x-dtbncx+xml", ExtensionGroup::Data},
    {"ndjson", "application/x-ndjson", ExtensionGroup::Data},
    {"nef", "image/x-nikon-nef", ExtensionGroup::RawPhoto},
    {"nfo", "text/x-nfo", ExtensionGroup::Document},
    {"nim", "text/x-nim", ExtensionGroup::Code},
    {"npz", "application/zip", ExtensionGroup::Data},
    {"nrw", "image/x-nikon-nrw", ExtensionGroup::RawPhoto},
    {"nsi", "text/plain", ExtensionGroup::System},
    {"nt", "application/n-triples", ExtensionGroup::Data},
    {"numbers", "application/vnd.apple.numbers", ExtensionGroup::Spreadsheet},
    {"nupkg", "application/zip", ExtensionGroup::Archive},
    {"o", "application/x-object", ExtensionGroup::Code},
    {"obj", "model/obj", ExtensionGroup::Data},
    {"ocx", "application/x-msdos-program", ExtensionGroup::System},
    {"odg", "application/vnd.oasis.opendocument.graphics", ExtensionGroup::Picture},
    {"odm", "application/vnd.oasis.opendocument.text-master", ExtensionGroup::Document},
    {"odp", "application/vnd.oasis.opendocument.presentation", ExtensionGroup::Presentation},
    {"ods", "application/vnd.oasis.opendocument.spreadsheet", ExtensionGroup::Spreadsheet},
    {"odt", "application/vnd.oasis.opendocument.text", ExtensionGroup::Document},
    {"ofx", "application/x-ofx", ExtensionGroup::Data},
    {"oga", "audio/ogg", ExtensionGroup::Audio},
    {"ogg", "audio/ogg", ExtensionGroup::Audio},
    {"ogv", "video/ogg", ExtensionGroup::Video},
    {"old", "application/x-trash", ExtensionGroup::System},
    {"one", "application/onenote", ExtensionGroup::Document},
    {"opf", "application/oebps-package+xml", ExtensionGroup::Data},
    {"opml", "text/x-opml+xml", ExtensionGroup::Data},
    {"opus", "audio/ogg", ExtensionGroup::Audio},
    {"ora", "image/openraster", ExtensionGroup::Picture},
    {"orf", "image/x-olympus-orf", ExtensionGroup::RawPhoto},
    {"org", "text/org", ExtensionGroup::Document},
    {"orig", "application/x-trash", ExtensionGroup::System},
    {"osm", "application/vnd.openstreetmap.data+xml", ExtensionGroup::Data},
    {"otc", "font/collection", ExtensionGroup::Font},
    {"otf", "font/otf", ExtensionGroup::Font},
    {"otp", "application/vnd.oasis.opendocument.presentation-template", ExtensionGroup::Presentation},
    {"ots", "application/vnd.oasis.opendocument.spreadsheet-template", ExtensionGroup::Spreadsheet},
    {"ott", "application/vnd.oasis.opendocument.text-template", ExtensionGroup::Document},
    {"ova", "application/ovf", ExtensionGroup::Archive},
    {"ovf", "application/ovf", ExtensionGroup::Archive},
    {"owl", "application/rdf+xml", ExtensionGroup::Data},
    {"oxps", "application/oxps", ExtensionGroup::Document},
    {"p12", "application/pkcs12", ExtensionGroup::Data},
    {"p7b", "application/x-pkcs7-certificates", ExtensionGroup::Data},
    {"p7c", "application/pkcs7-mime", ExtensionGroup::Data},
    {"p7m", "application/pkcs7-mime", ExtensionGroup::Data},
    {"p7s", "application/pkcs7-signature", ExtensionGroup::Data},
    {"pages", "application/vnd.apple.pages", ExtensionGroup::Document},
    {"pam", "image/x-portable-arbitrarymap", ExtensionGroup::Picture},
    {"par2", "application/x-par2", ExtensionGroup::Archive},
    {"parquet", "application/vnd.apache.parquet", ExtensionGroup::Data},
    {"part", "application/x-partial-download", ExtensionGroup::System},
    {"pas", "text/x-pascal", ExtensionGroup::Code},
    {"patch", "text/x-diff", ExtensionGroup::Code},
    {"pbm", "image/x-portable-bitmap", ExtensionGroup::Picture},
    {"pcap", "application/vnd.tcpdump.pcap", ExtensionGroup::Data},
    {"pcapng", "application/x-pcapng", ExtensionGroup::Data},
    {"pcf", "application/x-font-pcf", ExtensionGroup::Font},
    {"pct", "image/x-pict", ExtensionGroup::Picture},
    {"pcx", "image/x-pcx", ExtensionGroup::Picture},
    {"pdb", "application/vnd.palm", ExtensionGroup::Document},
    {"pdf", "application/pdf", ExtensionGroup::Document},
    {"pef", "image/x-pentax-pef", ExtensionGroup::RawPhoto},
    {"pem", "application/x-x509-ca-cert", ExtensionGroup::Data},
    {"perl", "text/x-perl", ExtensionGroup::Code},
    {"pfa", "application/x-font-type1", ExtensionGroup::Font},
    {"pfb", "application/x-font-type1", ExtensionGroup::Font},
    {"pfm", "application/x-font-type1", ExtensionGroup::Font},
    {"pfx", "application/pkcs12", ExtensionGroup::Data},
    {"pgm", "image/x-portable-graymap", ExtensionGroup::Picture},
    {"pgp", "application/pgp-encrypted", ExtensionGroup::Data},
    {"php", "application/x-php", ExtensionGroup::Code},
    {"phtml", "application/x-php", ExtensionGroup::Code},
    {"pict", "image/x-pict", ExtensionGroup::Picture},
    {"pkg", "application/vnd.apple.installer+xml", ExtensionGroup::Archive},
    {"pl", "text/x-perl", ExtensionGroup::Code},
    {"plist", "application/x-plist", ExtensionGroup::Data},
    {"pls", "audio/x-scpls", ExtensionGroup::Audio},
    {"ply", "model/ply", ExtensionGroup::Data},
    {"pm", "text/x-perl", ExtensionGroup::Code},
    {"png", "image/png", ExtensionGroup::Picture},
    {"pnm", "image/x-portable-anymap", ExtensionGroup::Picture},
    {"po", "text/x-gettext-translation", ExtensionGroup::Code},
    {"pod", "text/x-perl", ExtensionGroup::Code},
    {"pot", "text/x-gettext-translation-template", ExtensionGroup::Code},
    {"potx", "application/vnd.openxmlformats-officedocument.presentationml.template", ExtensionGroup::Presentation},
    {"ppm", "image/x-portable-pixmap", ExtensionGroup::Picture},
    {"pps", "application/vnd.ms-powerpoint", ExtensionGroup::Presentation},
    {"ppsm", "application/vnd.ms-powerpoint.slideshow.macroEnabled.12", ExtensionGroup::Presentation},
    {"ppsx", "application/vnd.openxmlformats-officedocument.presentationml.slideshow", ExtensionGroup::Presentation},
    {"ppt", "application/vnd.ms-powerpoint", ExtensionGroup::Presentation},
    {"pptm", "application/vnd.ms-powerpoint.presentation.macroEnabled.12", ExtensionGroup::Presentation},
    {"pptx", "application/vnd.openxmlformats-officedocument.presentationml.presentation", ExtensionGroup::Presentation},
    {"properties", "text/x-java-properties", ExtensionGroup::Data},
    {"proto", "text/x-protobuf", ExtensionGroup::Code},
    {"ps", "application/postscript", ExtensionGroup::Document},
    {"ps1", "text/x-powershell", ExtensionGroup::Code},
    {"psd", "image/vnd.adobe.photoshop", ExtensionGroup::Picture},
    {"psm1", "text/x-powershell", ExtensionGroup::Code},
    {"pst", "application/vnd.ms-outlook", ExtensionGroup::Document},
    {"pub", "application/vnd.ms-publisher", ExtensionGroup::Document},
    {"py", "text/x-python", ExtensionGroup::Code},
    {"pyc", "application/x-python-code", ExtensionGroup::Code},
    {"pyi", "text/x-python", ExtensionGroup::Code},
    {"pyw", "text/x-python", ExtensionGroup::Code},
    {"pyx", "text/x-python", ExtensionGroup::Code},
    {"qcow", "application/x-qemu-disk", ExtensionGroup::Archive},
    {"qcow2", "application/x-qemu-disk", ExtensionGroup::Archive},
    {"qml", "text/x-qml", ExtensionGroup::Code},
    {"qoi", "image/qoi", ExtensionGroup::Picture},
    {"qt", "video/quicktime", ExtensionGroup::Video},
    {"r", "text/x-r", ExtensionGroup::Code},
    {"ra", "audio/vnd.rn-realaudio", ExtensionGroup::Audio},
    {"raf", "image/x-fuji-raf", ExtensionGroup::RawPhoto},
    {"ram", "audio/vnd.rn-realaudio", ExtensionGroup::Audio},
    {"rar", "application/vnd.rar", ExtensionGroup::Archive},
    {"raw", "image/x-panasonic-rw", ExtensionGroup::RawPhoto},
    {"rb", "application/x-ruby", ExtensionGroup::Code},
    {"rc", "text/plain", ExtensionGroup::Code},
    {"rda", "application/x-r-data", ExtensionGroup::Data},
    {"rdata", "application/x-r-data", ExtensionGroup::Data},
    {"rdf", "application/rdf+xml", ExtensionGroup::Data},
    {"rdfs", "application/rdf+xml", ExtensionGroup::Data},
    {"rds", "application/x-r-data", ExtensionGroup::Data},
    {"reg", "text/x-ms-regedit", ExtensionGroup::System},
    {"rm", "application/vnd.rn-realmedia", ExtensionGroup::Video},
    {"rmvb", "application/vnd.rn-realmedia", ExtensionGroup::Video},
    {"rpm", "application/x-rpm", ExtensionGroup::Archive},
    {"rs", "text/rust", ExtensionGroup::Code},
    {"rss", "application/rss+xml", ExtensionGroup::Data},
    {"rst", "text/x-rst", ExtensionGroup::Document},
    {"rtf", "application/rtf", ExtensionGroup::Document},
    {"rw2", "image/x-panasonic-rw2", ExtensionGroup::RawPhoto},
    {"rwl", "image/x-leica-rwl", ExtensionGroup::RawPhoto},
    {"s", "text/x-asm", ExtensionGroup::Code},
    {"s3m", "audio/x-s3m", ExtensionGroup::Audio},
    {"sass", "text/x-sass", ExtensionGroup::Code},
    {"sav", "application/x-spss-sav", ExtensionGroup::Data},
    {"sc", "text/x-scala", ExtensionGroup::Code},
    {"scala", "text/x-scala", ExtensionGroup::Code},
    {"scm", "text/x-scheme", ExtensionGroup::Code},
    {"scr", "application/x-msdos-program", ExtensionGroup::System},
    {"scss", "text/x-scss", ExtensionGroup::Code},
    {"sh", "application/x-sh", ExtensionGroup::Code},
    {"sha1", "text/plain", ExtensionGroup::Data},
    {"sha256", "text/plain", ExtensionGroup::Data},
    {"sha512", "text/plain", ExtensionGroup::Data},
    {"shar", "application/x-shar", ExtensionGroup::Archive},
    {"shn", "application/x-shorten", ExtensionGroup::Audio},
    {"shp", "application/vnd.shp", ExtensionGroup::Data},
    {"shtml", "text/html", ExtensionGroup::Document},
    {"shx", "application/vnd.shx", ExtensionGroup::Data},
    {"sig", "application/pgp-signature", ExtensionGroup::Data},
    {"sit", "application/x-stuffit", ExtensionGroup::Archive},
    {"sitx", "application/x-stuffit", ExtensionGroup::Archive},
    {"snap", "application/vnd.snap", ExtensionGroup::Archive},
    {"so", "application/x-sharedlib", ExtensionGroup::Code},
    {"spx", "audio/ogg", ExtensionGroup::Audio},
    {"sql", "application/sql", ExtensionGroup::Code},
    {"sqlite", "application/vnd.sqlite3", ExtensionGroup::Data},
    {"sqlite3", "application/vnd.sqlite3", ExtensionGroup::Data},
    {"squashfs", "application/vnd.squashfs", ExtensionGroup::Archive},
    {"sr2", "image/x-sony-sr2", ExtensionGroup::RawPhoto},
    {"srf", "image/x-sony-srf", ExtensionGroup::RawPhoto},
    {"srt", "application/x-subrip", ExtensionGroup::Document},
    {"srw", "image/x-samsung-srw", ExtensionGroup::RawPhoto},
    {"ssa", "text/x-ssa", ExtensionGroup::Document},
    {"step", "model/step", ExtensionGroup::Data},
    {"stl", "model/stl", ExtensionGroup::Data},
    {"stp", "model/step", ExtensionGroup::Data},
    {"styl", "text/css", ExtensionGroup::Code},
    {"sub", "text/x-microdvd", ExtensionGroup::Document},
    {"sv", "text/x-svsrc", ExtensionGroup::Code},
    {"svelte", "text/html", ExtensionGroup::Code},
    {"svg", "image/svg+xml", ExtensionGroup::Picture},
    {"svgz", "image/svg+xml", ExtensionGroup::Picture},
    {"swf", "application/vnd.adobe.flash.movie", ExtensionGroup::Video},
    {"swift", "text/x-swift", ExtensionGroup::Code},
    {"swm", "application/x-ms-wim", ExtensionGroup::Archive},
    {"sxw", "application/vnd.sun.xml.writer", ExtensionGroup::Document},
    {"tab", "text/tab-separated-values", ExtensionGroup::Spreadsheet},
    {"tar", "application/x-tar", ExtensionGroup::Archive},
    {"tbz", "application/x-bzip-compressed-tar", ExtensionGroup::Archive},
    {"tbz2", "application/x-bzip-compressed-tar", ExtensionGroup::Archive},
    {"tcl", "text/tcl", ExtensionGroup::Code},
    {"tcx", "application/vnd.garmin.tcx+xml", ExtensionGroup::Data},
    {"temp", "application/x-trash", ExtensionGroup::System},
    {"tex", "text/x-tex", ExtensionGroup::Document},
    {"texi", "text/x-texinfo", ExtensionGroup::Document},
    {"texinfo", "text/x-texinfo", ExtensionGroup::Document},
    {"text", "text/plain", ExtensionGroup::Document},
    {"tga", "image/x-tga", ExtensionGroup::Picture},
    {"tgz", "application/x-compressed-tar", ExtensionGroup::Archive},
    {"tif", "image/tiff", ExtensionGroup::Picture},
    {"tiff", "image/tiff", ExtensionGroup::Picture},
    {"tlz", "application/x-lzma-compressed-tar", ExtensionGroup::Archive},
    {"tmp", "application/x-trash", ExtensionGroup::System},
    {"toml", "application/toml", ExtensionGroup::Data},
    {"topojson", "application/json", ExtensionGroup::Data},
    {"torrent", "application/x-bittorrent", ExtensionGroup::Archive},
    {"ts", "video/mp2t", ExtensionGroup::Video},
    {"tsv", "text/tab-separated-values", ExtensionGroup::Spreadsheet},
    {"tsx", "text/x-typescript", ExtensionGroup::Code},
    {"tta", "audio/x-tta", ExtensionGroup::Audio},
    {"ttc", "font/collection", ExtensionGroup::Font},
    {"ttf", "font/ttf", ExtensionGroup::Font},
    {"ttl", "text/turtle", ExtensionGroup::Data},
    {"txt", "text/plain", ExtensionGroup::Document},
    {"txz", "application/x-xz-compressed-tar", ExtensionGroup::Archive},
    {"tzst", "application/x-zstd-compressed-tar", ExtensionGroup::Archive},
    {"ui", "application/x-designer", ExtensionGroup::Code},
    {"url", "application/x-mswinurl", ExtensionGroup::Data},
    {"usd", "model/vnd.usd", ExtensionGroup::Data},
    {"usda", "model/vnd.usda", ExtensionGroup::Data},
    {"usdz", "model/vnd.usdz+zip", ExtensionGroup::Data},
    {"uu", "text/x-uuencode", ExtensionGroup::Archive},
    {"uue", "text/x-uuencode", ExtensionGroup::Archive},
    {"v", "text/x-verilog", ExtensionGroup::Code},
    {"vala", "text/x-vala", ExtensionGroup::Code},
    {"vb", "text/x-vb", ExtensionGroup::Code},
    {"vbs", "text/vbscript", ExtensionGroup::Code},
    {"vcard", "text/vcard", ExtensionGroup::Document},
    {"vcf", "text/vcard", ExtensionGroup::Document},
    {"vcs", "text/x-vcalendar", ExtensionGroup::Data},
    {"vdi", "application/x-vdi-disk", ExtensionGroup::Archive},
    {"vhd", "application/x-vhd-disk", ExtensionGroup::Archive},
    {"vhdl", "text/x-vhdl", ExtensionGroup::Code},
    {"vhdx", "application/x-vhdx-disk", ExtensionGroup::Archive},
    {"vmdk", "application/x-vmdk-disk", ExtensionGroup::Archive},
    {"vob", "video/mpeg", ExtensionGroup::Video},
    {"vsd", "application/vnd.visio", ExtensionGroup::Document},
    {"vsdx", "application/vnd.ms-visio.drawing.main+xml", ExtensionGroup::Document},
    {"vtt", "text/vtt", ExtensionGroup::Document},
    {"vue", "text/html", ExtensionGroup::Code},
    {"war", "application/java-archive", ExtensionGroup::Archive},
    {"wasm", "application/wasm", ExtensionGroup::Code},
    {"wav", "audio/x-wav", ExtensionGroup::Audio},
    {"wave", "audio/x-wav", ExtensionGroup::Audio},
    {"wbmp", "image/vnd.wap.wbmp", ExtensionGroup::Picture},
    {"wdp", "image/vnd.ms-photo", ExtensionGroup::Picture},
    {"weba", "audio/webm", ExtensionGroup::Audio},
    {"webloc", "application/x-plist", ExtensionGroup::Data},
    {"webm", "video/webm", ExtensionGroup::Video},
    {"webmanifest", "application/manifest+json", ExtensionGroup::Data},
    {"webp", "image/webp", ExtensionGroup::Picture},
    {"whl", "application/zip", ExtensionGroup::Archive},
    {"wim", "application/x-ms-wim", ExtensionGroup::Archive},
    {"wk1", "application/vnd.lotus-1-2-3", ExtensionGroup::Spreadsheet},
    {"wks", "application/vnd.ms-works", ExtensionGroup::Spreadsheet},
    {"wma", "audio/x-ms-wma", ExtensionGroup::Audio},
    {"wmf", "image/wmf", ExtensionGroup::Picture},
    {"wmv", "video/x-ms-wmv", ExtensionGroup::Video},
    {"woff", "font/woff", ExtensionGroup::Font},
    {"woff2", "font/woff2", ExtensionGroup::Font},
    {"wpd", "application/vnd.wordperfect", ExtensionGroup::Document},
    {"wps", "application/vnd.ms-works", ExtensionGroup::Document},
    {"wrl", "model/vrml", ExtensionGroup::Data},
    {"wsdl", "application/wsdl+xml", ExtensionGroup::Data},
    {"wv", "audio/x-wavpack", ExtensionGroup::Audio},
    {"x3f", "image/x-sigma-x3f", ExtensionGroup::RawPhoto},
    {"xar", "application/x-xar", ExtensionGroup::Archive},
    {"xbm", "image/x-xbitmap", ExtensionGroup::Picture},
    {"xcf", "image/x-xcf", ExtensionGroup::Picture},
    {"xht", "application/xhtml+xml", ExtensionGroup::Document},
    {"xhtml", "application/xhtml+xml", ExtensionGroup::Document},
    {"xla", "application/vnd.ms-excel", ExtensionGroup::Spreadsheet},
    {"xlf", "application/xliff+xml", ExtensionGroup::Data},
    {"xliff", "application/xliff+xml", ExtensionGroup::Data},
    {"xls", "application/vnd.ms-excel", ExtensionGroup::Spreadsheet},
    {"xlsb", "application/vnd.ms-excel.sheet.binary.macroEnabled.12", ExtensionGroup::Spreadsheet},
    {"xlsm", "application/vnd.ms-excel.sheet.macroEnabled.12", ExtensionGroup::Spreadsheet},
    {"xlsx", "application/vnd.openxmlformats-officedocument.spreadsheetml.sheet", ExtensionGroup::Spreadsheet},
    {"xlt", "application/vnd.ms-excel", ExtensionGroup::Spreadsheet},
    {"xltx", "application/vnd.openxmlformats-officedocument.spreadsheetml.template", ExtensionGroup::Spreadsheet},
    {"xm", "audio/x-xm", ExtensionGroup::Audio},
    {"xml", "application/xml", ExtensionGroup::Data},
    {"xpi", "application/x-xpinstall", ExtensionGroup::Archive},
    {"xpm", "image/x-xpixmap", ExtensionGroup::Picture},
    {"xps", "application/vnd.ms-xpsdocument", ExtensionGroup::Document},
    {"xsd", "application/xml", ExtensionGroup::Data},
    {"xsl", "application/xslt+xml", ExtensionGroup::Data},
    {"xslt", "application/xslt+xml", ExtensionGroup::Data},
    {"xspf", "application/xspf+xml", ExtensionGroup::Audio},
    {"xz", "application/x-xz", ExtensionGroup::Archive},
    {"yaml", "application/x-yaml", ExtensionGroup::Data},
    {"yml", "application/x-yaml", ExtensionGroup::Data},
    {"z", "application/x-compress", ExtensionGroup::Archive},
    {"zig", "text/x-zig", ExtensionGroup::Code},
    {"zip", "application/zip", ExtensionGroup::Archive},
    {"zipx", "application/zip", ExtensionGroup::Archive},
    {"zsh", "application/x-sh", ExtensionGroup::Code},
    {"zst", "application/zstd", ExtensionGroup::Archive},
});

static_assert(std::adjacent_find(knownExtensions.begin(), knownExtensions.end(),
                                 [](const auto& left, const auto& right) {
                                     return left.extension >= right.extension;
                                 }) == knownExtensions.end(),
              "sorted, and each extension once");

/// What follows the last dot of a name, without it. Empty without a dot, and where nothing stands behind it or
/// before it, as in ".profile".
constexpr std::string_view extensionOf(std::string_view fileName) noexcept
{
    const std::size_t dot = fileName.rfind('.');
    return dot == std::string_view::npos || dot == 0 ? std::string_view() : fileName.substr(dot + 1);
}

/// What is known of a name's extension, in letters of either case; null when nothing is. Allocates nothing.
constexpr const KnownExtension* findExtension(std::string_view fileName) noexcept
{
    const std::string_view wanted = extensionOf(fileName);
    const auto lower = [](char letter) {
        return letter >= 'A' && letter <= 'Z' ? static_cast<char>(letter - 'A' + 'a') : letter;
    };
    const auto isBelow = [lower](const KnownExtension& known, std::string_view value) {
        return std::lexicographical_compare(known.extension.begin(), known.extension.end(), value.begin(), value.end(),
                                            [lower](char left, char right) { return lower(left) < lower(right); });
    };
    const auto isSame = [lower](char left, char right) { return left == lower(right); };
    const auto found = std::lower_bound(knownExtensions.begin(), knownExtensions.end(), wanted, isBelow);
    return found != knownExtensions.end() &&
            std::equal(found->extension.begin(), found->extension.end(), wanted.begin(), wanted.end(), isSame)
        ? &*found
        : nullptr;
}

/// The mime type by extension, `unknownMimeType` without a known one.
constexpr std::string_view mimeTypeOf(std::string_view fileName) noexcept
{
    const KnownExtension* const known = findExtension(fileName);
    return known == nullptr ? unknownMimeType : known->mimeType;
}

/// The kind by extension, `Unknown` without a known one.
constexpr ExtensionGroup groupOf(std::string_view fileName) noexcept
{
    const KnownExtension* const known = findExtension(fileName);
    return known == nullptr ? ExtensionGroup::Unknown : known->group;
}

/// The extensions of one group, sorted, for filters of file dialogs and the like.
template <ExtensionGroup Group>
inline constexpr auto extensionsOf = [] {
    constexpr auto isMember = [](const KnownExtension& known) { return known.group == Group; };
    std::array<std::string_view, std::count_if(knownExtensions.begin(), knownExtensions.end(), isMember)> extensions{};
    std::size_t size = 0;
    for (const KnownExtension& known : knownExtensions) {
        if (isMember(known)) {
            extensions[size++] = known.extension;
        }
    }
    return extensions;
}();

// --- Icons --------------------------------------------------------------------------------------------------------
// Below the client's folder of resources.

///@{
/// The icons of folders, and of files of unknown kind.
inline constexpr std::string_view folderIconPath = "FileIcon/folder.png";
inline constexpr std::string_view unknownIconPath = "FileIcon/unknown.png";
///@}

/// The icon of a kind of files.
constexpr std::string_view iconPathOf(ExtensionGroup group) noexcept
{
    switch (group) {
    case ExtensionGroup::Picture:
        return "FileIcon/picture.png";
    case ExtensionGroup::RawPhoto:
        return "FileIcon/rawphoto.png";
    case ExtensionGroup::Video:
        return "FileIcon/video.png";
    case ExtensionGroup::Audio:
        return "FileIcon/audio.png";
    case ExtensionGroup::Document:
        return "FileIcon/document.png";
    case ExtensionGroup::Spreadsheet:
        return "FileIcon/spreadsheet.png";
    case ExtensionGroup::Presentation:
        return "FileIcon/presentation.png";
    case ExtensionGroup::Archive:
        return "FileIcon/archive.png";
    case ExtensionGroup::Code:
        return "FileIcon/code.png";
    case ExtensionGroup::Font:
        return "FileIcon/font.png";
    case ExtensionGroup::Data:
        return "FileIcon/data.png";
    case ExtensionGroup::System:
        return "FileIcon/system.png";
    case ExtensionGroup::Unknown:
        break;
    }
    return unknownIconPath;
}

static_assert(std::all_of(knownExtensions.begin(), knownExtensions.end(),
                          [](const KnownExtension& known) {
                              const auto isCapital = [](char letter) { return letter >= 'A' && letter <= 'Z'; };
                              const bool isLower =
                                  std::none_of(known.extension.begin(), known.extension.end(), isCapital);
                              const bool isAudio = known.group == ExtensionGroup::Audio;
                              const bool isFont = known.group == ExtensionGroup::Font;
                              return isLower && iconPathOf(known.group) != unknownIconPath &&
                                  known.mimeType != folderMimeType &&
                                  (isAudio || !known.mimeType.starts_with("audio/")) &&
                                  (isFont || !known.mimeType.starts_with("font/"));
                          }),
              "each is in lower case, of a group with an icon, and of that which its mime type tells");

// --- Albums -------------------------------------------------------------------------------------------------------
// What stands in `Lpath` of the albums that every gallery has; the user's own lie below `userAlbumsPath`.

///@{
/// The album of this kind.
inline constexpr std::string_view cameraAlbumPath = "/Camera";
inline constexpr std::string_view screenshotAlbumPath = "/Screenshots";
inline constexpr std::string_view videoAlbumPath = "/Videos";
inline constexpr std::string_view favoriteAlbumPath = "/Favorites";
inline constexpr std::string_view recycleAlbumPath = "/Recycled";
///@}
/// What the paths of the user's own albums begin with.
inline constexpr std::string_view userAlbumsPath = "/Albums/";

// --- Requests -----------------------------------------------------------------------------------------------------
// Paths behind the address of the server, which the client is told when it signs in.

///@{
/// One listing of all items; what changed since; where the next list of changes begins.
inline constexpr std::string_view driveFilesPath = "/drive/files";
inline constexpr std::string_view driveChangesPath = "/drive/changes";
inline constexpr std::string_view driveStartCursorPath = "/drive/cursor";
///@}
/// Contents on their way to the cloud.
inline constexpr std::string_view driveUploadPath = "/drive/upload";
/// Contents on their way from it.
inline constexpr std::string_view driveDownloadPath = "/drive/download";
/// Previews.
inline constexpr std::string_view driveThumbnailPath = "/drive/thumbnails";
/// Many actions in one request.
inline constexpr std::string_view driveBatchPath = "/drive/batch";
/// Space taken and left.
inline constexpr std::string_view driveSpacePath = "/drive/space";

///@{
/// As the requests of these names for the drive.
inline constexpr std::string_view galleryFilesPath = "/gallery/files";
inline constexpr std::string_view galleryAlbumsPath = "/gallery/albums";
inline constexpr std::string_view galleryChangesPath = "/gallery/changes";
///@}
/// Where the logs of usage go.
inline constexpr std::string_view usageLogPath = "/usage/logs";

// --- Settings -----------------------------------------------------------------------------------------------------
// Keys of `UserProperties`. Values are text: flags "0" or "1", numbers in digits.

/// The folder that is synchronised.
inline constexpr const wchar_t* syncCloudFolderKey = UserProperties::syncCloudFolderKey;
/// The folder that downloads go to.
inline constexpr const wchar_t* downloadFolderKey = L"DownloadFolder";
///@{
/// Flags: start with the system; bring new pictures to the gallery; tell the user when a transfer is complete.
inline constexpr const wchar_t* startWithSystemKey = L"StartWithSystem";
inline constexpr const wchar_t* automaticUploadKey = L"AutomaticUpload";
inline constexpr const wchar_t* notifyCompletionKey = L"NotifyCompletion";
///@}
/// Bytes per second; 0 for no limit.
inline constexpr const wchar_t* uploadLimitKey = L"UploadLimit";
/// As `uploadLimitKey`.
inline constexpr const wchar_t* downloadLimitKey = L"DownloadLimit";
/// Transfers that run at the same time.
inline constexpr const wchar_t* parallelTransfersKey = L"ParallelTransfers";
/// A language tag such as "en-GB"; empty for the system's language.
inline constexpr const wchar_t* languageKey = L"Language";

} // namespace DatabaseService::ClientConstants
