// What a generated component class takes for granted: the bean attribute, the logger and
// the event grammar. An event string is a list of "name" or "name=value" words separated
// by ";"; the serialised outputs are "name:presence:value" words separated by ";".
using System;
using System.Collections.Generic;

namespace WComp.Beans {
  [AttributeUsage(AttributeTargets.Class)]
  public class BeanAttribute : Attribute {
    public string Category;
  }
}

namespace WComp.Util {
  public static class Logger {
    public static bool Verbose = Environment.GetEnvironmentVariable("QUARN_CS_LOG") != null;
    public static void Info(string text) { if (Verbose) Console.Error.WriteLine(text); }
  }

  public class MyEvent {
    public string nameEvt;
    public string valPresenceEvt;
    public string evTypeValue;
    public string evtValeur;
    public MyEvent(string name, string value) {
      nameEvt = name; evTypeValue = ""; evtValeur = value; valPresenceEvt = value;
    }
    public MyEvent(string name, string type, string value, string presence) {
      nameEvt = name; evTypeValue = type; evtValeur = value; valPresenceEvt = presence;
    }
  }

  public class GrammaireA {
    public List<MyEvent> deserialize(string s) {
      var events = new List<MyEvent>();
      foreach (string word in s.Split(new char[] {';', ' '}, StringSplitOptions.RemoveEmptyEntries)) {
        int eq = word.IndexOf('=');
        if (eq < 0) events.Add(new MyEvent(word, "True"));
        else events.Add(new MyEvent(word.Substring(0, eq), "", word.Substring(eq + 1), "True"));
      }
      return events;
    }
    public string serialize(List<MyEvent> events) {
      var words = new List<string>();
      foreach (MyEvent e in events) {
        bool valued = e.evTypeValue != "";
        words.Add(e.nameEvt + ":" + (valued ? e.valPresenceEvt : e.evtValeur) + ":" + (valued ? e.evtValeur : ""));
      }
      return string.Join(";", words);
    }
  }
}
