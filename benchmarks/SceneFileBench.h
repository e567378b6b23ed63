#pragma once

#include "benchmarks/Comparison.h"
#include "benchmarks/SceneFile.h"

#include <cstddef>
#include <memory>
#include <string>
#include <vector>

/// Scene files with metadata, of either kind, against the same metadata as text in memory. The files are in the page
/// cache.
namespace bench
{
void compareFileReading(Comparison& comparison, const std::string& extension);

/// A scene of a few nodes with a few records each, against one `pread` of the file and the parse of its texts.
void compareSmallScene(Comparison& comparison, const std::string& extension);

/// Without a journal; everything is replaced.
void compareFileWriting(Comparison& comparison, const std::string& extension);

/// Writing with a journal against writing without one, and in a large scene against a small one.
void compareJournal(Comparison& comparison, const std::string& extension);
void compareJournalAtScale(Comparison& comparison);

/// What reading asks of the kernel, against one `pread` of as many bytes as there is metadata.
void compareBytesRead(Comparison& comparison, const std::string& extension);
void compareReadCalls(Comparison& comparison, const std::string& extension);

/// So many records that their text has about that many bytes.
std::vector<Record> recordsOfTextSize(std::size_t bytes);

/// The library's sides, for other workloads to share. They keep the file.
Side fileReading(const std::shared_ptr<const SceneFile>& file, const std::vector<Record>& expected);
Side fileWriting(const std::shared_ptr<const SceneFile>& file, const std::vector<Record>& records,
                 vumo::Data::Accessor::eDurability durability);

/// A scene in which each of the nodes, "node0" and so on, has the records.
std::shared_ptr<const SceneFile> sceneOfNodes(const std::string& extension, std::size_t nodes,
                                              const std::vector<Record>& records);

/// All its nodes, by the library.
Side nodesReading(const std::shared_ptr<const SceneFile>& file, std::size_t nodes, const std::vector<Record>& records);

/// The bytes of its metadata, into a buffer that is made for them as the library's is, and beside them the texts of as
/// many nodes and of their structure. To free what was read counts, too, where so many are read that nobody could keep
/// them all.
Side partsReading(const std::shared_ptr<const SceneFile>& file, std::size_t nodes, const std::vector<Record>& records,
                  bool isFreed = false);

/// One label edited among many nodes: with a read of that node alone, which keeps the rest, against one of all.
void compareNodeEdit(Comparison& comparison, const std::string& extension);
} // namespace bench
