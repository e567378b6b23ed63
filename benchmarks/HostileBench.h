#pragma once

#include "benchmarks/Comparison.h"

#include <cstddef>

/// Files and texts that were made to be expensive: what a byte of a large one costs against a byte of a small one of
/// the same kind. The "peer" is the library itself.
namespace bench
{
/// Something to be read, and what reading it has to give.
struct HostileInput
{
    Side reading;
    std::size_t size; ///< in bytes
};

/// Makes one of a number of parts that says how large it is.
using HostileKind = HostileInput (*)(std::size_t parts);

/// An ASCII scene with that many megabytes of metadata in one statement.
HostileInput longStatement(std::size_t megabytes);

/// An ASCII scene with that many lines of one character above its metadata, or inside of it.
HostileInput linesAboveStatement(std::size_t lines);
HostileInput linesInStatement(std::size_t lines);

/// An ASCII scene with that many statements.
HostileInput manyStatements(std::size_t statements);

/// A binary scene with that many empty chunks of the host around its metadata, or as many structures, or as many nodes
/// with empty metadata.
HostileInput manyHostChunks(std::size_t chunks);
HostileInput manyStructures(std::size_t structures);
HostileInput manyNodes(std::size_t nodes);

/// A binary scene with that many structures, and a text with that many members, whose names all have one hash.
HostileInput structuresOfOneHash(std::size_t structures);
HostileInput membersOfOneHash(std::size_t members);

/// Texts with that many lines of one character: faulty members of a structure, faulty lines of a channel, indices and
/// values of a stream.
HostileInput linesOfStructure(std::size_t lines);
HostileInput linesOfChannel(std::size_t lines);
HostileInput linesOfStream(std::size_t lines);

/// Compares inputs of `many` parts and of `few` by the time, or by the memory at its peak, that each byte takes.
void compareHostileTime(Comparison& comparison, HostileKind kind, std::size_t many, std::size_t few);
void compareHostileMemory(Comparison& comparison, HostileKind kind, std::size_t many, std::size_t few);
} // namespace bench
