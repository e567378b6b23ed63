#include "vumo/data/AttachDirectly.h"

#include "tests/support/DataFixtures.h"

namespace vumo::Data
{
namespace
{
using AttachDirectlyTest = test::DataTest;

TEST_F(AttachDirectlyTest, SetMetadata_SharesAndSparesTheObjectAttached)
{
    AttachDirectly object;
    EXPECT_EQ(object.metadata(), nullptr);
    Associations metadata;
    EXPECT_TRUE(object.setMetadata(metadata));
    metadata.channel("vertex");
    EXPECT_TRUE(object.metadata()->findChannel("vertex"));

    const Associations* const attached = object.metadata();
    EXPECT_TRUE(object.setMetadata(*object.metadata()));
    EXPECT_EQ(object.editableMetadata(), attached);

    EXPECT_TRUE(object.deleteMetadata());
    EXPECT_TRUE(object.deleteMetadata());
    EXPECT_EQ(object.editableMetadata(), nullptr);
}

TEST_F(AttachDirectlyTest, Copies_ShareTheMetadataAndAlwaysHaveSome)
{
    AttachDirectly object;
    AttachDirectly copy(object);
    ASSERT_TRUE(copy.metadata());
    copy.editableMetadata()->channel("face");
    object = copy;
    ASSERT_NE(object.metadata(), copy.metadata());
    const AttachDirectly& self = object;
    object = self;
    EXPECT_TRUE(object.metadata()->findChannel("face"));
}
} // namespace
} // namespace vumo::Data
