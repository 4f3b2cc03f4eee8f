#include "tables.h"

#include "value.h"

#include <utility>

namespace migration {

int64 GalleryFiles::mend(std::vector<Legacy>& rows, FileLook& legacy)
{
    // Only a column of a type that the engine does not know loses its cell.
    const auto known = legacy.number("SELECT 1 FROM pragma_table_info('GalleryFile') WHERE name = 'Sdsmtime' AND "
                                     "type IN ('INTEGER', 'TEXT', 'VARCHAR')");
    if (known) {
        return 0;
    }
    int64 mended = 0;
    std::size_t next = 0;
    // In the order of the table, as the reader goes.
    legacy.scan("Sdsmtime IS NULL", "GalleryFile NOT INDEXED", [&](sqlite3_stmt* stored) {
        const std::size_t index = next++;
        if (index < rows.size() && Value::stored(stored, 1).number != 0) {
            Legacy& row = rows[index];
            row.VideoMetadata = std::exchange(
                row.PictureMetadata, std::exchange(row.VideoDownloadLocalPath, std::exchange(row.Sdsmtime, {})));
            ++mended;
        }
    });
    return mended;
}

} // namespace migration
