#include "Failure.h"

#include "Text.h"
#include "vumo/data/Index.h"

#include <pybind11/stl.h>

#include <exception>

namespace py = pybind11;
using vumo::Data::Accessor;
using vumo::Data::Index;

namespace
{
/// Raises what `vumo.errors` makes of the failure.
void raise(const Failure& failure)
{
    const py::object make = py::module_::import("vumo.errors").attr("make");
    const py::object node = failure.node ? toPython(*failure.node) : py::none();
    const py::object error =
        make(failure.kind, toPython(failure.text), toPython(failure.file), node, failure.position, failure.systemError);
    PyErr_SetObject(reinterpret_cast<PyObject*>(Py_TYPE(error.ptr())), error.ptr());
}

void raise(PyObject* type, const std::string& text)
{
    PyErr_SetObject(type, toPython(text).ptr());
}

const char* textOf(Index::eCreationErrors error)
{
    switch (error)
    {
    case Index::eUnknownIndexType:
        return "No such type of indices is registered.";
    case Index::eIllegalIndexText:
        return "The text is no index of the stream's type.";
    case Index::eTrailingIndexText:
        break;
    }
    return "The text holds more than an index of the stream's type.";
}

const char* className(Accessor::Failure::eKind kind)
{
    switch (kind)
    {
    case Accessor::Failure::kNoFile:
        return "NoFileError";
    case Accessor::Failure::kNoAccess:
        return "NoAccessError";
    case Accessor::Failure::kNotScene:
        return Failure::kNotScene;
    case Accessor::Failure::kMalformed:
        return "MalformedError";
    case Accessor::Failure::kRefused:
        return Failure::kRefused;
    case Accessor::Failure::kLocked:
        return "LockedError";
    case Accessor::Failure::kChanged:
        return Failure::kChanged;
    case Accessor::Failure::kNotRestored:
        return "NotRestoredError";
    case Accessor::Failure::kNone:
    case Accessor::Failure::kSystem:
        break;
    }
    return "SystemCallError";
}

void translate(std::exception_ptr pending)
{
    try
    {
        if (pending)
            std::rethrow_exception(pending);
    }
    catch (const Failure& failure)
    {
        raise(failure);
    }
    catch (const StillViewed& viewed)
    {
        raise(PyExc_BufferError, viewed.text);
    }
    catch (Index::eCreationErrors error)
    {
        raise(PyExc_ValueError, textOf(error));
    }
}
} // namespace

Failure Failure::of(const Accessor& accessor, const std::string& text)
{
    const Accessor::Failure& failure = accessor.failure();
    return {className(failure.kind), text, accessor.fileName(), std::nullopt, std::nullopt, failure.systemError};
}

std::unique_ptr<Accessor> Failure::newAccessor(const std::string& fileName)
{
    std::unique_ptr<Accessor> accessor = Accessor::accessorByExtension(fileName);
    if (!accessor)
        throw Failure{kNotScene, "There are no scenes with the extension of " + fileName + ".", fileName};
    return accessor;
}

void registerFailures()
{
    py::register_exception_translator(&translate);
}
