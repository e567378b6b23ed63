// Has a fuzzer put what makes its target fail into the target's corpus, wherever the fuzzer is started.
#include <vector>

/// libFuzzer calls this before it reads its options; of two for one thing it takes the last.
extern "C" int LLVMFuzzerInitialize(int* count, char*** arguments)
{
    static char theFolder[] = "-artifact_prefix=" VUMO_CORPUS;
    static std::vector<char*> theArguments(*arguments, *arguments + *count);
    theArguments.insert(theArguments.begin() + 1, theFolder);
    theArguments.push_back(nullptr);
    *count += 1;
    *arguments = theArguments.data();
    return 0;
}
