#include "apps/zel/Csv.h"
#include "examples/gallery.h"

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
    all.push_back({"report", MakeReport});
    return all;
}

std::vector<double> ReadColumn(const std::string& path, const std::string& name) {
    return zel::cli::CsvTable::Read(path).Column(name);
}
