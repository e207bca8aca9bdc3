// How the agent is known to other programs.
#pragma once

// The class of its hidden window, which takes WM_CLOSE as the request to end.
inline constexpr wchar_t kAgentClass[] = L"TolvenarAgentClass";
// Owned by the resident agent from its start to its end.
inline constexpr wchar_t kAgentMutex[] = L"TolvenarAgentMutex";
