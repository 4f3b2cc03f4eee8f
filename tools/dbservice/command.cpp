#include "command.h"

#include "platform/text.h"

#include <stdexcept>

namespace dbservice {

Arguments::Arguments(Argument argument)
{
    m_all.push_back(std::move(argument));
}

Arguments::Arguments(std::initializer_list<Arguments> parts)
{
    for (const Arguments& part : parts) {
        m_all.insert(m_all.end(), part.begin(), part.end());
    }
}

Arguments moved(const Arguments& arguments, const std::type_info& owner, void* (*part)(void* options))
{
    Arguments all;
    for (const Argument& argument : arguments) {
        const auto place = [part, place = argument.place](void* options) { return place(part(options)); };
        all = {all, Argument{argument.about, &owner, place}};
    }
    return all;
}

Place Action::place(const Argument& argument) const
{
    if (m_type == nullptr || *argument.owner != *m_type) {
        throw std::logic_error(std::string(argument.about.name) + " belongs to the options of another command");
    }
    return argument.place(m_options.get());
}

std::string refuseInvalid(const std::string& text)
{
    return platform::isUtf8(text) ? "" : "is not UTF-8";
}

} // namespace dbservice
