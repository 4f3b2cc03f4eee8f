#include "librarydrive.h"

#include "clientservices/globalparamwrapper.h"

namespace benchmarks {

void LibraryDrive::open(const std::filesystem::path& folder)
{
    GlobalParamWrapper::GetInstance()->SetUserDataBaseFolder(folder.generic_wstring());
}

void LibraryDrive::dropIndexes()
{
    std::vector<std::string> statements;
    for (const char* index :
         {"nameIndex", "mimeTypeIndex", "sizeIndex", "modifiedTimeIndex", "fileExtSignIndex", "parentIdIndex"}) {
        statements.push_back(std::string("DROP INDEX ") + index + ';');
    }
    m_provider.ExecuteSQLList(statements);
}

} // namespace benchmarks
