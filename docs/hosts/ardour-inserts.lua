-- SPDX-License-Identifier: GPL-3.0-or-later
-- Puts KESTRUM on tracks of several widths and prints what Ardour makes of it. Run by ardour7-lua; the bundle has to have been
-- scanned. The session is made in a temporary folder.
AudioEngine:set_backend("None (Dummy)", "", "")
local folder = os.tmpname()
os.remove(folder)
local session = create_session(folder, "inserts", 48000)
assert(session, "Ardour makes no session")

local function audio(channels)
  return ARDOUR.ChanCount(ARDOUR.DataType("audio"), channels)
end

local function withKestrum(channels)
  local tracks = session:new_audio_track(channels, channels, nil, 1, "track", ARDOUR.PresentationInfo.max_order,
                                         ARDOUR.TrackMode.Normal, true)
  local track = tracks:front()
  local plugin = ARDOUR.LuaAPI.new_plugin(session, "Orvane KESTRUM", ARDOUR.PluginType.VST3, "")
  assert(not plugin:isnil(), "Ardour does not know the plug-in: scan first")
  track:add_processor_by_index(plugin, 0, nil, true)
  return track, plugin
end

local function tell(what, plugin)
  local insert = plugin:to_insert()
  local count, inputs = insert:get_count(), insert:natural_input_streams():n_audio()
  print(string.format("%s: %d instance%s with %d inputs%s", what, count, count == 1 and "" or "s", inputs,
                      count == 1 and "" or " each"))
end

for _, channels in ipairs({1, 2, 6, 8, 12, 16}) do
  local _, plugin = withKestrum(channels)
  tell("track with " .. channels .. " channels", plugin)
end
local track, plugin = withKestrum(6)
track:customize_plugin_insert(plugin, 1, audio(2), audio(6))
tell("track with 6 channels, one instance asked for", plugin)
os.execute("rm -r '" .. folder .. "'")
