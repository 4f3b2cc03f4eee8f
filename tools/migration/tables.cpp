#include "tables.h"

#include "value.h"

#include <string>
#include <utility>

namespace migration {

int64 GalleryFiles::mend(std::vector<Legacy>& rows, FileLook& legacy)
{
    // A NULL is a cell in a column of a type that the engine knows.
    const bool isCell = legacy
                            .number("SELECT 1 FROM pragma_table_info('GalleryFile') WHERE name = 'Sdsmtime' AND "
                                    "type IN ('INTEGER', 'TEXT', 'VARCHAR')")
                            .has_value();
    int64 mended = 0;
    std::size_t next = 0;
    // In the order of the table, as the reader goes.
    legacy.scan("Sdsmtime", "GalleryFile NOT INDEXED", [&](sqlite3_stmt* stored) {
        const std::size_t index = next++;
        const Value time = Value::stored(stored, 1);
        if (index >= rows.size() || time.kind == Value::Kind::Text) {
            return;
        }
        Legacy& row = rows[index];
        if (time.kind == Value::Kind::Number) {
            row.Sdsmtime = std::to_string(time.number);
            ++mended;
        } else if (time.kind == Value::Kind::None && !isCell) {
            row.VideoMetadata = std::exchange(
                row.PictureMetadata, std::exchange(row.VideoDownloadLocalPath, std::exchange(row.Sdsmtime, {})));
            ++mended;
        }
    });
    return mended;
}

} // namespace migration
