// The examples. Each makes one drawing; `folder` holds the CSV files of examples/data.
#pragma once

#include <zel/zel.h>

#include <chrono>
#include <memory>
#include <string>
#include <vector>

struct Example {
    std::string name;
    std::unique_ptr<Zel2Main> (*make)(const std::string& folder);
};

// The drawings of the gallery; the pictures that the documentation shows; these, those and the report.
std::vector<Example> GalleryExamples();
std::vector<Example> DocumentationPictures();
std::vector<Example> ChartPictures();
std::vector<Example> LookPictures();  // part of those
std::vector<Example> AllExamples();

// Whether a drawing begins with a chart or a pie, which classic archives cannot hold.
inline bool IsChart(Zel2Main& drawing) {
    Zel2* const first = drawing.GetCount() > 0 ? drawing[0] : nullptr;
    return dynamic_cast<Zel2Chart*>(first) || dynamic_cast<Zel2Pie*>(first);
}

// The numbers of a column; times become decimal years.
std::vector<double> ValuesOf(const zel::Column& column);
// The day of a time in a row of a column.
std::chrono::year_month_day DayOf(const zel::Column& times, std::size_t row);
// The numbers of a column of a CSV file.
std::vector<double> ReadColumn(const std::string& path, const std::string& name);

// A drawing of one chart.
struct OneChart {
    explicit OneChart(const zel::ChartOptions& options) {
        root->SetRules(ZelRules::EXACT);
        chart = root->Add(std::make_unique<Zel2Chart>(options));
    }
    std::unique_ptr<Zel2Main> root = std::make_unique<Zel2Main>();
    Zel2Chart* chart = nullptr;
};

std::unique_ptr<Zel2Main> MakeTemperature(const std::string& folder);
std::unique_ptr<Zel2Main> MakeCo2(const std::string& folder);
std::unique_ptr<Zel2Main> MakeWeather(const std::string& folder);
std::unique_ptr<Zel2Main> MakeEarthquakes(const std::string& folder);
std::unique_ptr<Zel2Main> MakeStyles(const std::string& folder);
std::unique_ptr<Zel2Main> MakeTexts(const std::string& folder);
std::unique_ptr<Zel2Main> MakeDatabase(const std::string& folder);

// A report of many pages in `drawing`, which owns it.
Zel2Report& MakeWeatherReport(Zel2Main& drawing, const std::string& folder);
