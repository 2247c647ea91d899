#include "examples/gallery.h"

#include <zel/tables/Table.h>

#include <chrono>
#include <cmath>

namespace {

std::unique_ptr<Zel2Main> MakeReport(const std::string& folder) {
    auto drawing = std::make_unique<Zel2Main>();
    MakeWeatherReport(*drawing, folder);
    return drawing;
}

}  // namespace

std::vector<Example> GalleryExamples() {
    return {{"temperature", MakeTemperature}, {"co2", MakeCo2},       {"weather", MakeWeather},
            {"earthquakes", MakeEarthquakes}, {"styles", MakeStyles}, {"texts", MakeTexts},
            {"database", MakeDatabase}};
}

std::vector<Example> AllExamples() {
    std::vector<Example> all = GalleryExamples();
    for (const Example& picture : DocumentationPictures()) all.push_back(picture);
    for (const Example& chart : ChartPictures()) all.push_back(chart);
    all.push_back({"report", MakeReport});
    return all;
}

std::chrono::year_month_day DayOf(const zel::Column& times, std::size_t row) {
    const auto seconds = std::chrono::seconds(std::llround(times.Origin() + times.At(row)));
    return std::chrono::year_month_day(
        std::chrono::floor<std::chrono::days>(std::chrono::sys_seconds(seconds)));
}

std::vector<double> ValuesOf(const zel::Column& column) {
    using namespace std::chrono;
    std::vector<double> values;
    for (std::size_t i = 0; i < column.Size(); ++i) {
        double value = column.At(i);
        if (column.GetKind() == zel::Column::Kind::TIMES && std::isfinite(value)) {
            const auto time = sys_seconds(seconds(std::llround(column.Origin() + value)));
            const year_month_day date = DayOf(column, i);
            const auto begin = sys_days(date.year() / January / 1),
                       end = sys_days((date.year() + years(1)) / January / 1);
            value = static_cast<int>(date.year()) +
                    duration<double>(time - begin) / duration<double>(end - begin);
        }
        values.push_back(value);
    }
    return values;
}

std::vector<double> ReadColumn(const std::string& path, const std::string& name) {
    return ValuesOf(zel::tables::Table::Read(path)[name]);
}
