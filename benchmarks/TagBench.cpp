#include "benchmarks/TagBench.h"

#include "benchmarks/SceneFile.h"
#include "benchmarks/Streams.h"
#include "benchmarks/peers/SoundFile.h"

using namespace vumo::Data;

namespace bench
{
namespace
{
constexpr std::size_t kTexts = 10;
constexpr unsigned int kEdited = 3;

std::vector<std::string> labelsOf(const std::vector<Record>& records)
{
    std::vector<std::string> labels;
    for (const Record& record : records)
        labels.push_back(record.label);
    return labels;
}

/// The labels of the records in a scene file.
class SceneLabels
{
public:
    explicit SceneLabels(const std::vector<Record>& records) : mFile("ob", records) {}

    void edit(unsigned int i, const std::string& text) const
    {
        const std::unique_ptr<Accessor> accessor = accessorFor(mFile);
        read(*accessor, mFile);
        accessor->setDurability(Accessor::kMemoryOnly); // the peer does not wait for the disk either
        std::string errors;
        Handle record = streamIn(*accessor).element(i);
        record.setPositionByMemberName("Label");
        record.fromStr(text, 0, errors);
        write(*accessor);
    }

    std::vector<std::string> texts() const
    {
        const std::unique_ptr<Accessor> accessor = accessorFor(mFile);
        read(*accessor, mFile);
        std::vector<std::string> result;
        for (StreamIterator position = streamIn(*accessor).begin(); position.valid(); ++position)
            result.emplace_back(blockAt(position->data()).label);
        return result;
    }

private:
    SceneFile mFile;
};

/// Edits one text there and back.
template <class File>
Side editing(const File& file, const std::vector<std::string>& labels)
{
    std::vector<std::string> edited = labels;
    edited[kEdited] += " or so";
    const auto round = [&file, labels, edited](Stopwatch& watch) {
        watch.time([&] { file.edit(kEdited, edited[kEdited]); });
        if (file.texts() != edited)
            throw WrongResult("a text is not edited");
        watch.time([&] { file.edit(kEdited, labels[kEdited]); });
        return digestOf(file.texts());
    };
    return {round, digestOf(labels)};
}
} // namespace

void compareEditInPlace(Comparison& comparison)
{
    const std::vector<Record> records = makeRecords(kTexts);
    const std::vector<std::string> labels = labelsOf(records);
    const SceneLabels scene(records);
    const SoundFile sound(labels);
    constexpr std::size_t kEdits = 2;
    comparison.run(kEdits, editing(scene, labels), editing(sound, labels));
}
} // namespace bench
