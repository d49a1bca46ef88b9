// Form1's record binding must not overwrite the user's channel data: choosing a section type clears
// the data boxes, and the conduit shows its full discharge in the box bound to "Talud"; neither is an
// edit of the record. What the user types still is.
#include <gtest/gtest.h>

#include <map>

#include "forms/binding.hpp"
#include "screens/form1.hpp"
#include "screens/registry.hpp"

namespace {

namespace box = cauce::screens::form1::box;
namespace button = cauce::screens::form1::button;

using Row = std::map<std::string, std::string>;
std::vector<Row> g_rows;

class MemorySheet : public cauce::forms::RecordSource {
  public:
    int RecordCount() const override { return static_cast<int>(g_rows.size()); }
    bool HasColumn(const std::string& c) const override { return g_rows.front().count(c) > 0; }
    std::string Get(int r, const std::string& c) const override { return g_rows.at(r - 1).at(c); }
    void Set(int r, const std::string& c, const std::string& t) override { g_rows.at(r - 1)[c] = t; }
    std::string Save() override { return ""; }
    std::string Path() const override { return "memoria.xlsx"; }
};

class Form1Binding : public ::testing::Test {
  protected:
    void SetUp() override {
        previous_ = cauce::forms::GetSourceOpener();
        cauce::forms::SetSourceOpener(
            [](const std::string&, const std::string&) -> std::unique_ptr<cauce::forms::RecordSource> {
                return std::make_unique<MemorySheet>();
            });
        g_rows = {{{"Rugosidad", "0.015"}, {"Pendiente", "0.001"}, {"Base", "2"}, {"Talud", "1.5"}},
                  {{"Rugosidad", "0.013"}, {"Pendiente", "0.002"}, {"Base", "1.2"}, {"Talud", "0"}}};
        screen_ = cauce::screens::MakeScreen("Form1");
        screen_->OpenWorkbook("memoria.xlsx");
    }
    void TearDown() override { cauce::forms::SetSourceOpener(previous_); }

    cauce::forms::SourceOpener previous_ = nullptr;
    std::unique_ptr<cauce::forms::Screen> screen_;
};

TEST_F(Form1Binding, ChoosingATypeDoesNotBlankTheRecord) {
    screen_->Click(button::Trapezoidal);  // clears the data boxes
    EXPECT_EQ(screen_->Get(box::Roughness).text, "");
    screen_->MoveNext();
    EXPECT_EQ(g_rows[0],
              (Row{{"Rugosidad", "0.015"}, {"Pendiente", "0.001"}, {"Base", "2"}, {"Talud", "1.5"}}));
    EXPECT_EQ(screen_->Get(box::Base).text, "1.2");
}

TEST_F(Form1Binding, TheConduitsFullDischargeIsNotSavedAsTheSideSlope) {
    screen_->Click(button::Circular);
    screen_->Type(box::Roughness, "0.013");
    screen_->Type(box::Slope, "0.002");
    screen_->Type(box::Diameter, "0.8");
    screen_->Type(box::Discharge, "0.3");
    ASSERT_FALSE(screen_->Click(button::ConduitNormalDepth).has_value());
    ASSERT_NE(screen_->Get(box::FullDischarge).text, "");  // shown in the box bound to "Talud"
    screen_->MoveNext();
    // What the user typed is saved; the full discharge is not.
    EXPECT_EQ(g_rows[0],
              (Row{{"Rugosidad", "0.013"}, {"Pendiente", "0.002"}, {"Base", "0.8"}, {"Talud", "1.5"}}));
}

}  // namespace
