// config/taskkeys.cpp: the texts of the sections and keys of task files.
#include "config/configkeys.h"

namespace quillon_com::orb {

const std::string TaskRoot = "TaskRoot";
const std::string TaskSection = "Task";
const std::string TaskGroupSection = "TaskGroup";
const std::string GeneralSection = "General";
const std::string SettingsSection = "Settings";
const std::string Schedule_Section = "Schedule";
const std::string DependenciesSection = "Task Dependencies";

const std::string TaskNameKey = "DisplayName";
const std::string TaskGuidKey = "TaskID";
const std::string TaskTypeKey = "TaskType";
const std::string PlatformsKey = "Platforms";
const std::string SoftwareIdKey = "SoftwareID";
const std::string CreatorSoftwareKey = "CreatorID";
const std::string PriorityKey = "Priority";
const std::string VersionKey = "TaskVersion";
const std::string PendingKey = "TaskPending";

const std::string EnabledKey = "Enabled";
const std::string StopAfterMinutesKey = "StopAfterMinutes";
const std::string DeleteWhenFinishedKey = "DeleteWhenFinished";

const std::string ScheduleType_Key = "Type";
const std::string StartDateTime_Key = "StartDateTime";
const std::string StopDateTime_Key = "StopDateTime";
const std::string StopTimeSpecified_Key = "StopDateValid";
const std::string GMT_Key = "GMTTime";
const std::string IdleMinutes_Key = "IdleMinutes";
const std::string AtStartupDelayMinutes_Key = "AtStartupDelayMinutes";
const std::string RunIfMissed_Key = "RunIfMissed";
const std::string RunIfMissedDelay_Key = "RunIfMissedDelayMins";
const std::string RandomizationEnabled_Key = "RandomizationEnabled";
const std::string RandomizationInterval_Key = "RandomizationWndMins";
const std::string TaskRepeatable_Key = "TaskRepeatable";
const std::string RepeatOption_Key = "RepeatOption";
const std::string RepeatInterval_Key = "RepeatInterval";
const std::string UntilOption_Key = "UntilOption";
const std::string UntilDuration_Key = "UntilDuration";
const std::string UntilTime_Key = "UntilTime";
const std::string RepeatDays_Key = "RepeatDays";
const std::string DaysOfWeek_Key = "MaskDaysOfWeek";
const std::string RepeatWeeks_Key = "RepeatWeeks";
const std::string MonthOption_Key = "MonthOption";
const std::string DayNumOfMonth_Key = "DayNumOfMonth";
const std::string WeekNumOfMonth_Key = "WeekNumOfMonth";
const std::string DayOfWeek_Key = "DayOfWeek";
const std::string MaskMonthsOfYear_Key = "MaskMonthsOfYear";
const std::string TaskFinished_Key = "TaskFinished";
const std::string EnableRunTaskOnceADay_Key = "EnableRunTaskOnceADay";

const std::string NumDependencies_Key = "NumberOfDependencies";
const std::string Dependency_I_Key = "Dependency";

}  // namespace quillon_com::orb
