#include "fuzzing.h"

extern "C" int LLVMFuzzerTestOneInput(const unsigned char* bytes, std::size_t size)
{
    fuzzing::attempt({reinterpret_cast<const char*>(bytes), size});
    return 0;
}
