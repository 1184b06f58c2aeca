#include "ui/floor/paint/LabelLines.h"

#include <string_view>

namespace mirovane {

namespace {

/// Writes lines downwards. The background is a running state: it stays from line to line until it is changed.
class LabelWriter {
public:
    explicit LabelWriter(const CHardware& device) : device_(device) {}

    void setBackground(LabelBackground background) { background_ = background; }

    void write(std::string text, bool underline = false) {
        lines_.push_back({std::move(text), background_, underline, row_++});
    }

    void writeAboveIcon(std::string text) { lines_.push_back({std::move(text), background_, false, -1}); }

    void writeUsername() {
        const std::string& name = device_.Username;
        const bool present = !name.starts_with('[') && !name.ends_with(']');
        if (device_.State == DeviceState::On && present)
            background_ = LabelBackground::LoggedOn;
        write(name);
        background_ = device_.ShowAll ? LabelBackground::ShowAll : LabelBackground::Canvas;
    }

    void writeComment() {
        std::string_view rest = device_.Comment;
        for (std::size_t end = rest.find('\r'); end != std::string_view::npos; end = rest.find('\r')) {
            write(std::string(rest.substr(0, end)));
            rest.remove_prefix(end + 1);
        }
        write(std::string(rest));
    }

    std::vector<LabelLine> take() { return std::move(lines_); }

private:
    const CHardware& device_;
    LabelBackground background_ = LabelBackground::Canvas;
    int row_ = 0;
    std::vector<LabelLine> lines_;
};

void writeFields(LabelWriter& writer, const CHardware& device, const DisplaySettings& display) {
    const bool marker = device.Type == DeviceType::LocationMarker;
    const auto wanted = [&device](const std::string& text, bool setting) {
        return !text.empty() && (setting || device.ShowAll);
    };
    const auto plain = [&](const std::string& text, bool setting) {
        if (wanted(text, setting))
            writer.write(text);
    };
    plain(device.Name, display.PropertiesComputer);
    plain(device.IPAddress, display.PropertiesIPAddress);
    if (wanted(device.Username, display.PropertiesUsername))
        writer.writeUsername();
    plain(device.MACAddress, display.PropertiesMACAddress);
    if (!marker)
        plain(device.ToJack, display.PropertiesJack);
    if (wanted(device.Comment, display.PropertiesComment || marker))
        writer.writeComment();
    plain(device.SlashText, display.PropertiesSlash);
    plain(device.BackslashText, display.PropertiesBackslash);
    plain(device.HorzText, display.PropertiesHorz);
    if (!marker)
        plain(device.VertText, display.PropertiesVert);
}

} // namespace

std::vector<LabelLine> labelLines(const CHardware& device, const DisplaySettings& display,
                                  const LabelState& state) {
    if (device.Selected && !state.LabelsShown)
        return {};
    LabelWriter writer(device);
    const bool phase = state.ReminderPhase && display.ReminderDeviceShow;
    if (device.ReminderDue && (phase || state.find.FindReminderMode)) {
        writer.setBackground(LabelBackground::Due);
        writer.write("Due:" + device.ToDo, true);
    }
    if (device.ShowAll)
        writer.setBackground(LabelBackground::ShowAll);
    if (device.Selected && state.find.FindHitCount > 1)
        writer.writeAboveIcon("Found:" + std::to_string(state.find.FindHitCount));
    writeFields(writer, device, display);
    return writer.take();
}

std::optional<LabelLine> foundReminderLine(const CHardware& device, const LabelState& state) {
    if (!device.Selected || !state.find.FindReminderMode)
        return std::nullopt;
    const bool due = device.ReminderOn == 1 && device.ReminderDue;
    return LabelLine{(due ? "Due:" : "Reminder:") + device.ToDo,
                     due ? LabelBackground::Due : LabelBackground::ShowAll, true, 0};
}

} // namespace mirovane
