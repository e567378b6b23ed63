#pragma once

#include <pybind11/pybind11.h>

#include <string>
#include <string_view>
#include <utility>

/// Text as the library has it: bytes in the encoding of the locale. In Python it is a `str`, where bytes that are no
/// characters are lone surrogates, as in names of files; so that any bytes come back as they went.
struct Text
{
    std::string bytes;
};

/// The text as a `str`. A new reference; throws what Python raises.
inline pybind11::object toPython(std::string_view text)
{
    PyObject* const object = PyUnicode_DecodeFSDefaultAndSize(text.data(), static_cast<Py_ssize_t>(text.size()));
    if (!object)
        throw pybind11::error_already_set();
    return pybind11::reinterpret_steal<pybind11::object>(object);
}

namespace pybind11::detail
{
template <>
struct type_caster<Text>
{
    PYBIND11_TYPE_CASTER(Text, const_name("str"));

    /// A `str`; anything else is a `TypeError`.
    bool load(handle source, bool /*convert*/)
    {
        if (!source || !PyUnicode_Check(source.ptr()))
            return false;
        const auto encoded = reinterpret_steal<object>(PyUnicode_EncodeFSDefault(source.ptr()));
        if (!encoded)
            throw error_already_set();
        value.bytes.assign(PyBytes_AS_STRING(encoded.ptr()), static_cast<std::size_t>(PyBytes_GET_SIZE(encoded.ptr())));
        return true;
    }

    static handle cast(const Text& text, return_value_policy /*policy*/, handle /*parent*/)
    {
        return toPython(text.bytes).release();
    }
};
} // namespace pybind11::detail
