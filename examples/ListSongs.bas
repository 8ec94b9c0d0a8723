// Shows the playlists of a player, and the songs of each, on a console.
// Call it with the player's volume: ListSongs Volume(1)

Sub ListSongs(player As FolderItem)
  Dim f As FolderItem
  Dim db As ZemiTunesDB
  Dim list, entry, song As Integer

  f = player.Child("iPod_Control").Child("iTunes").Child("iTunesDB")
  db = New ZemiTunesDB
  If Not db.Load(f) Then
    If db.Error = 1 Then
      Print "This is not a library that can be read: " + f.AbsolutePath
    Else
      Print "The file cannot be opened: " + f.AbsolutePath
    End If
    Return
  End If

  Print db.VolumeName + ": " + Str(db.CountSongs) + " songs"
  For list = 0 To db.CountPlayLists - 1
    Print ""
    Print db.GetPlayListName(list) + ", " + Str(db.CountSongsInPlayList(list)) + " songs"
    For entry = 0 To db.CountSongsInPlayList(list) - 1
      // The position of the entry's song in the whole library.
      song = db.GetIndex(list, entry)
      Print "  " + Describe(db, song)
    Next
  Next
End Sub

// One song in a line.
Function Describe(db As ZemiTunesDB, song As Integer) As String
  Dim changed As New Date
  Dim seconds, kbits As Integer

  // Milliseconds.
  seconds = db.GetDuration(song) \ 1000

  // A player's file (LibType 1) hands the bit rate on with its bytes reversed.
  kbits = db.GetBitrate(song)
  If db.LibType = 1 Then
    kbits = Reversed(kbits)
  End If

  // When the file was last changed, whatever the method's name says. Seconds since 1904, as Date counts them; an Integer
  // shows those after 1972 as negative.
  changed.TotalSeconds = db.GetDataAdded(song)
  If db.GetDataAdded(song) < 0 Then
    changed.TotalSeconds = db.GetDataAdded(song) + 4294967296.0
  End If

  Return db.GetArtist(song) + " - " + db.GetTitle(song) + " (" + db.GetTrackTotalInfo(song) + "), " _
    + Str(seconds \ 60) + ":" + Format(seconds Mod 60, "00") + ", " + Str(kbits) + " kbit/s, changed " _
    + changed.SQLDate
End Function

// A 32-bit number with its four bytes in the opposite order.
Function Reversed(number As Integer) As Integer
  Dim i, result As Integer
  For i = 0 To 3
    result = Bitwise.BitOr(Bitwise.ShiftLeft(result, 8), _
      Bitwise.BitAnd(Bitwise.ShiftRight(number, 8 * i), &hFF))
  Next
  Return result
End Function
