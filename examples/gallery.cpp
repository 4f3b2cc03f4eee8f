// The gallery: an album with a picture, in a file that the client names.
#include "start.h"

#include "databaseservice/databaseservice.h"
#include "databaseservice/gallerydbprovider.h"

using namespace DatabaseService;

int main(int argc, char** argv)
{
    const std::filesystem::path folder = argc > 1 ? argv[1] : "store";
    const auto failures = start(folder);
    InitDataBase(folder.wstring(), L"gallery.dat"); // with it the main store and the shortcut list

    AlbumTable album;
    album.AlbumId = "album-1";
    album.AlbumName = "Holidays";
    album.Lpath = "/Albums/Holidays";

    GalleryFileTable picture;
    picture.UniqueId = "picture-1";
    picture.AlbumId = album.AlbumId;
    picture.FileName = "sunrise.jpg";
    picture.Size = 2'048'000;

    std::vector<AlbumTable> albums{album}; // a record replaces the row of its key
    std::vector<GalleryFileTable> pictures{picture};
    if (!GalleryDBProvider::InsertAlbumTable(albums) || !GalleryDBProvider::InsertGalleryFileTable(pictures)) {
        return 1;
    }

    const GalleryFileTable found = GalleryDBProvider::GetGalleryFileOneData(picture.UniqueId);
    std::cout << found.FileName << ", one of " << GalleryDBProvider::CountGalleryFileTable() << '\n';
    return failures->count() == 0 && found.Size == picture.Size ? 0 : 1;
}
