#pragma once

/// The framework's configuration object. The plug-in receives pointers to it and never looks inside.
class ConfigBase;
