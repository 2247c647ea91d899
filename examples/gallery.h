// The examples. Each makes one drawing; `folder` holds the CSV files of examples/data.
#pragma once

#include <zel/zel.h>

#include <memory>
#include <string>
#include <vector>

std::unique_ptr<Zel2Main> MakeTemperature(const std::string& folder);
std::unique_ptr<Zel2Main> MakeCo2(const std::string& folder);
std::unique_ptr<Zel2Main> MakeWeather(const std::string& folder);
std::unique_ptr<Zel2Main> MakeEarthquakes(const std::string& folder);
std::unique_ptr<Zel2Main> MakeStyles(const std::string& folder);
std::unique_ptr<Zel2Main> MakeTexts(const std::string& folder);
std::unique_ptr<Zel2Main> MakeDatabase(const std::string& folder);

// A column of a CSV file; dates become decimal years.
// A report of many pages in `drawing`, which owns it.
Zel2Report& MakeWeatherReport(Zel2Main& drawing, const std::string& folder);

// The pictures that the documentation shows, as PNG files.
void DrawPictures(const std::string& folder);

std::vector<double> ReadColumn(const std::string& path, const std::string& name);
