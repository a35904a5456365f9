#include <gtest/gtest.h>

#include <memory>
#include <thread>

#include "VKBALUtility.h"
#include "VKFieldValidators.h"

TEST(VKFieldValidator, WholeTextsAreAcceptedOrRefused)
{
    const struct
    {
        std::shared_ptr<VKFieldValidator> validator;
        std::vector<std::string> accepted;
        std::vector<std::string> refused;
    } rows[] = {
        {std::make_shared<VKFieldValidator>(), {"}"}, {"", "}}", "a"}},
        {std::make_shared<VKNameValidator>(), {"O'Brien-Smith Jr."}, {"", "a1", "a_b"}},
        {std::make_shared<VKNameValidatorEx>(), {"Ward 3_b-1.'"}, {"", "a%", "a\\b", "\xC3\xBC", "\xF0\x9F\x9A\x92"}},
        {std::make_shared<VKAlphaValidator>(), {"a B"}, {"", "1"}},
        {std::make_shared<VKNumericValidator>(), {"007"}, {"", "1a", "-1"}},
        {std::make_shared<VKAlphaNumericValidator>(), {"a1"}, {"", "a 1"}},
        {std::make_shared<VKNoSpaceValidator>(), {"a\tb"}, {"", "a b"}},
        {std::make_shared<VKNoHTMLValidator>(), {"a\"b"}, {"", "<b>"}},
        {std::make_shared<VKNoHTMLDoubleQuoteValidator>(), {"", "a'b"}, {"a\"", "<"}},
        {std::make_shared<VKNoMultipleSpaceFieldValidator>(), {"a b c", "a&*"}, {"", " a", "a ", "a  b"}},
        {std::make_shared<VKPasswordValidator>(), {"", "a b'c"}, {"\"", "a\"b"}},
        {std::make_shared<VKEmailValidator>(), {"a+b.c@d-e.org"}, {"", "a", "a@", "a@b@c", "a%@b", "a@b+c"}},
        {std::make_shared<VKPhoneNoValidator>(), {"+(049) 30-1234,#", "*31#"}, {"", "+", "(1", "1/2"}},
        {std::make_shared<VKAddressValidator>(), {"\\\\host\\share /a_b.c"}, {"", "a:b"}},
        {std::make_shared<VKHttpAddressValidator>(), {"https://a.org:80/x?y=1&z=(2);'%20"}, {"", "a b", "a#b"}},
        {std::make_shared<VKIPAddressValidator>(),
         {"*", "999.999.999.999", "10.0.0.1:8080"},
         {"", "1.2.3", "1.2.3.4:"}},
        {std::make_shared<VKServiceNameValidator>(), {"a_1.b"}, {"", "a-b"}},
        {std::make_shared<VKDBNameValidator>(), {"R&D [x] {y}`~!"}, {"", "a.b", "a'b"}},
        {std::make_shared<VKDBColumnNameValidator>(), {"dbo.col_1"}, {"", "a b"}},
        {std::make_shared<VKDeviceNameValidator>(),
         {"Pager 1 (a+b),{c}~^`!&$;=@[d]_-."},
         {"", "a#", "it's", "a/b", "a%"}},
        {std::make_shared<VKPortNameValidator>(), {"/dev/ttyS0.1"}, {"", "a-b"}},
        {std::make_shared<VKParameterKeyValidator>(), {"key_1-a b."}, {"", "a'b"}},
        {std::make_shared<VKReceiverAttribNameValidator>(), {"Room 1_a-b."}, {"", "a&b"}},
        {std::make_shared<VKActionParamNameValidator>(), {"a b%"}, {"", "a@b"}},
        {std::make_shared<VKCustomHeaderLabelValidator>(),
         {",,", "1,a0B9cF,text, and more"},
         {"", "12,,x", "1,a0B9c,x", ","}},
    };
    for (const auto& row : rows) {
        for (const std::string& text : row.accepted)
            EXPECT_TRUE((*row.validator)(text)) << typeid(*row.validator).name() << " [" << text << "]";
        for (const std::string& text : row.refused)
            EXPECT_FALSE(row.validator->validate(text)) << typeid(*row.validator).name() << " [" << text << "]";
    }
}

TEST(VKFieldValidator, LongTextsAreRefusedWithoutOverflowingTheStack)
{
    std::thread([] { // a thread's own stack, not the wide one of the main thread
        for (const std::size_t size : {std::size_t{255}, std::size_t{2000}})
            EXPECT_TRUE(VKNameValidatorEx().validate(std::string(size, 'a'))) << size;
        for (const std::size_t size : {std::size_t{9999}, std::size_t{10000}, std::size_t{5000000}}) {
            EXPECT_FALSE(VKNameValidatorEx().validate(std::string(size, 'a')));
            EXPECT_FALSE(VKPhoneNoValidator().validate(std::string(size, '(')));
        }
    })
        .join();
}

TEST(VKFieldValidator, ABadExpressionRefusesAndEscapedTextMatchesItself)
{
    EXPECT_FALSE(VKFieldValidator("([a-z").validate("a"));
    const std::string special = "\\[^$.|?+(){}*]";
    EXPECT_EQ(VKFieldValidator::escapeRESpecialChars(special), "\\\\\\[\\^\\$\\.\\|\\?\\+\\(\\)\\{\\}*]");
    EXPECT_TRUE(VKFieldValidator(VKFieldValidator::escapeRESpecialChars("a.b[c]{2}(d)?")).validate("a.b[c]{2}(d)?"));
    EXPECT_TRUE(VKBALUtility::IsValidName("St. Mary's_2-b"));
    EXPECT_FALSE(VKBALUtility::IsValidName("R&D"));
    EXPECT_TRUE(VKBALUtility::IsValidDeviceName("R&D (1)"));
    EXPECT_FALSE(VKBALUtility::IsValidDeviceName("O'Brien"));
}
